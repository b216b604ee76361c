# kalvo_programa(<target> "<description>"): what every program and DLL that is delivered has: version information, for a
# program its manifest, and its symbols in a file of their own (simbolos/<file>.debug), to which it carries a link. The
# description is written as resource text: letters outside ASCII as octal escapes of Windows-1252.
set(KALVO_MODELOS_VERSAO ${CMAKE_CURRENT_LIST_DIR})
set(KALVO_SIMBOLOS ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/simbolos)
file(MAKE_DIRECTORY ${KALVO_SIMBOLOS}/x86)

function(kalvo_programa ALVO DESCRICAO)
  get_target_property(tipo ${ALVO} TYPE)
  if(tipo STREQUAL EXECUTABLE)
    set(TIPO VFT_APP)
    set(EXTENSAO exe)
    set(manifesto ${CMAKE_CURRENT_BINARY_DIR}/${ALVO}.manifest)
    configure_file(${KALVO_MODELOS_VERSAO}/programa.manifest.in ${manifesto} @ONLY)
    set(LINHA_MANIFESTO "1 RT_MANIFEST \"${manifesto}\"")
  else()
    set(TIPO VFT_DLL)
    set(EXTENSAO dll)
  endif()
  set(recurso ${CMAKE_CURRENT_BINARY_DIR}/${ALVO}Versao.rc)
  configure_file(${KALVO_MODELOS_VERSAO}/versao.rc.in ${recurso} @ONLY)
  target_sources(${ALVO} PRIVATE ${recurso})
  kalvo_separa_simbolos(comandos ${CMAKE_OBJCOPY} $<TARGET_FILE:${ALVO}> ${KALVO_SIMBOLOS}/${ALVO}.${EXTENSAO}.debug)
  add_custom_command(TARGET ${ALVO} POST_BUILD ${comandos} VERBATIM)
endfunction()

# kalvo_separa_simbolos(<variable> <objcopy> <file> <symbols>): the commands that move a program's symbols, as arguments
# of a custom command. The copies would bear the hour.
function(kalvo_separa_simbolos VARIAVEL OBJCOPY ARQUIVO SIMBOLOS)
  set(objcopy ${CMAKE_COMMAND} -E env SOURCE_DATE_EPOCH=0 ${OBJCOPY})
  set(${VARIAVEL}
      COMMAND ${objcopy} --only-keep-debug ${ARQUIVO} ${SIMBOLOS}
      COMMAND ${objcopy} --strip-all --add-gnu-debuglink=${SIMBOLOS} ${ARQUIVO}
      PARENT_SCOPE)
endfunction()
