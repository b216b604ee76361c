# What a Windows server receives: the folder that scripts/empacota packs.

set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)
# The registry editor wants CR LF.
configure_file(exemplos/Kalvo-exemplo.reg ${CMAKE_BINARY_DIR}/Kalvo-exemplo.reg @ONLY NEWLINE_STYLE CRLF)
# The example of the guide as a file.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS docs/client-guide.md)
file(READ docs/client-guide.md guia)
string(REGEX MATCH "\n```cpp\n(.*)\n```\n\n## The life" exemplo "${guia}")
file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/cliente.cpp CONTENT "${CMAKE_MATCH_1}\n" @ONLY)

install(TARGETS Kalvo QZDF_VeiculosPS qzdados veiculos RUNTIME DESTINATION .)
install(FILES ${KALVO_PROXY_X86} DESTINATION x86)
install(FILES ${KALVO_TLB} ${CMAKE_BINARY_DIR}/Kalvo-exemplo.reg DESTINATION .)
install(
  FILES client/QZVeiculosCampos.h
        client/QZVeiculosCliente.h
        client/QZVeiculosErros.h
        client/QZVeiculosMoeda.h
        client/QZVeiculosPadrao.h
        client/QZVeiculosTextos.h
        vehicles/RegVeiculoPS.h
        ${KALVO_IDL_GERADO}/QZDF_Veiculos.h
        ${KALVO_IDL_GERADO}/QZDF_Veiculos_i.c
  DESTINATION include)
install(FILES server/idl/QZDF_Veiculos.idl vehicles/RegVeiculoPS.idl DESTINATION idl)
install(
  FILES ${CMAKE_BINARY_DIR}/cliente.cpp
        exemplos/biblioteca_de_tipos.cpp
        exemplos/cliente.c
        exemplos/Cliente.cs
        exemplos/QZDF_Veiculos.cs
        exemplos/veiculos.csv
  DESTINATION exemplos)
install(FILES exemplos/base-v0/DFVEIC.DAT DESTINATION exemplos/base-v0)
install(
  FILES docs/client-guide.md
        docs/diagnosis.md
        docs/file-formats.md
        docs/installation.md
        docs/message-library.md
        docs/offline-tool.md
        docs/reliability.md
        docs/third-party.md
  DESTINATION docs)
# The notices of what the compiler links in, as Debian ships them.
install(FILES /usr/share/doc/gcc-mingw-w64-x86-64-posix-runtime/copyright DESTINATION licencas RENAME gcc.txt)
install(FILES /usr/share/doc/mingw-w64-x86-64-dev/copyright DESTINATION licencas RENAME mingw-w64.txt)
install(FILES /usr/share/common-licenses/GPL-3 DESTINATION licencas RENAME GPL-3.txt)

install(DIRECTORY ${KALVO_SIMBOLOS}/ DESTINATION . COMPONENT simbolos EXCLUDE_FROM_ALL)
