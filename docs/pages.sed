# Filters a page for Doxygen. In the reference, pictures are in the folder of the pages.
s|\(\.\./pictures/|(|
# Programs are in the same folder, too.
s#\((\.\./\.\./tools/)?(sdp|move|answer)/([a-z_]*\.(h|cpp)\))#(\3#g
# A list of pages, as in index.md, becomes a tree.
s,^- \[([^]]*)\]\(((guides/)?[a-z-]*)\.md\),- \\subpage md_docs_\2 "\1",
:label
s|^(- \\subpage [a-z_]*)[/-]|\1_|
t label
