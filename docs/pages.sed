# What Doxygen reads in the place of a page. Pictures lie beside the pages of the reference.
s|\(\.\./pictures/|(|
# So do programs.
s#\((\.\./\.\./tools/)?(sdp|move|answer)/([a-z_]*\.(h|cpp)\))#(\3#g
# A list of pages, as in index.md, becomes a tree of them.
s,^- \[([^]]*)\]\(((guides/)?[a-z-]*)\.md\),- \\subpage md_docs_\2 "\1",
:label
s|^(- \\subpage [a-z_]*)[/-]|\1_|
t label
