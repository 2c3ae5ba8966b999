# Writes a source with files as text: cmake -D OUTPUT=... -D ROOT=... -D "FILES=a;b" -D NAME=... -P this
#
# NAME is a function of namespace zerva, declared in a header of its own; see host/skeleton/.
set(text "#include \"host/skeleton/${NAME}.h\"\n\nnamespace zerva {\n\n")
string(APPEND text "const std::vector<EmbeddedFile>& embeddedFiles() {\n")
string(APPEND text "  static const std::vector<EmbeddedFile> files{\n")
foreach(file IN LISTS FILES)
  file(READ "${ROOT}/${file}" content)
  string(APPEND text "    {R\"(${file})\", R\"~~~(${content})~~~\"},\n")
endforeach()
string(APPEND text "  };\n  return files;\n}\n\n}  // namespace zerva\n")
file(WRITE "${OUTPUT}" "${text}")
