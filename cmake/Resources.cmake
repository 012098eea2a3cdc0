# add_resources(TARGET TYPE NAME FILE [TYPE NAME FILE]...)
# Links files into a library of that name as the program's resources: the bytes by the assembler's
# .incbin, the table and RegisterProgramResources in a generated source. Files may be generated.
function(add_resources target)
  set(assembly ".section .rodata\n")
  set(declarations)
  set(entries)
  set(files)
  set(arguments ${ARGN})
  set(index 0)
  while(arguments)
    list(POP_FRONT arguments type name file)
    string(APPEND assembly
      ".balign 16\n.global resource_${index}_begin\nresource_${index}_begin:\n.incbin \"${file}\"\n"
      ".global resource_${index}_end\nresource_${index}_end:\n.byte 0\n")
    string(APPEND declarations "extern \"C\" const unsigned char resource_${index}_begin[], resource_${index}_end[];\n")
    string(APPEND entries "    {u\"${type}\", u\"${name}\", {resource_${index}_begin, resource_${index}_end}},\n")
    list(APPEND files ${file})
    math(EXPR index "${index} + 1")
  endwhile()
  string(APPEND assembly ".section .note.GNU-stack,\"\",@progbits\n")
  set(stem ${CMAKE_CURRENT_BINARY_DIR}/${target})
  file(CONFIGURE OUTPUT ${stem}.s CONTENT "${assembly}")
  file(CONFIGURE OUTPUT ${stem}.cpp CONTENT "#include \"App/Resources/ProgramResources.h\"
#include \"TFFramework/Utilities/Storage/Resources.h\"

${declarations}
void RegisterProgramResources() {
  static const TF::Resource resources[] = {
${entries}  };
  TF::SetResources(resources);
}
")
  add_library(${target} STATIC ${stem}.s ${stem}.cpp)
  # Clang complains of sanitizer options, which an assembly source has no use for.
  set_source_files_properties(${stem}.s PROPERTIES
    OBJECT_DEPENDS "${files}" COMPILE_OPTIONS -Wno-unused-command-line-argument)
  target_link_libraries(${target} PUBLIC tf_core)
endfunction()
