# [start]
set print pretty on
set print object on
set print static-members off
break inspect
run
# [start]
echo --\n
# [capability]
print capability
# [capability]
echo --\n
# [media]
print *capability.filteredMedia.front()
# [media]
echo --\n
# [attribute]
print *capability.filteredMedia.front()->attributes.front()
print ((QOVA_AudioAttribute *) capability.filteredMedia.front()->attributes.back())->codec
# [attribute]
echo --\n
# [owned]
print *capability.filteredMedia.front()->address
print *capability.filteredMedia.front()->cryptos.front()
# [owned]
echo --\n
# [raw]
disable pretty-printer
print capability.filteredMedia
print (*(QOVA_Media **) (capability.filteredMedia._M_impl._M_node._M_next + 1))->mediaType
print (*(QOVA_Media **) (capability.filteredMedia._M_impl._M_node._M_next->_M_next + 1))->mediaType
# [raw]
