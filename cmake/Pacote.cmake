# What a Windows server receives: kalvo-<version>-win64.zip, made by scripts/pacote.

set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)
# The registry editor wants CR LF.
configure_file(exemplos/Kalvo-exemplo.reg ${CMAKE_BINARY_DIR}/Kalvo-exemplo.reg @ONLY NEWLINE_STYLE CRLF)

install(TARGETS Kalvo QZDF_VeiculosPS qzdados veiculos RUNTIME DESTINATION .)
install(FILES ${KALVO_PROXY_X86} DESTINATION x86)
install(FILES ${KALVO_TLB} ${CMAKE_BINARY_DIR}/Kalvo-exemplo.reg DESTINATION .)
install(
  FILES client/QZVeiculosCampos.h
        client/QZVeiculosCliente.h
        client/QZVeiculosErros.h
        client/QZVeiculosMoeda.h
        client/QZVeiculosTextos.h
        vehicles/RegVeiculoPS.h
        ${KALVO_IDL_GERADO}/QZDF_Veiculos.h
        ${KALVO_IDL_GERADO}/QZDF_Veiculos_i.c
  DESTINATION include)
install(FILES server/idl/QZDF_Veiculos.idl vehicles/RegVeiculoPS.idl DESTINATION idl)
install(FILES docs/client-guide.md docs/diagnosis.md docs/file-formats.md docs/installation.md docs/message-library.md
        docs/offline-tool.md
        DESTINATION docs)

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_FILE_NAME kalvo-${PROJECT_VERSION}-win64)
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_SOURCE_DIR}/build)
set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY ON)
include(CPack)
