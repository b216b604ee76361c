#ifndef KALVO_TESTS_APOIO_INFORMACOESFALSAS_H
#define KALVO_TESTS_APOIO_INFORMACOESFALSAS_H

#include "core/platform/Informacoes.h"

namespace apoio {

/// A machine with fixed figures. The figures are to be set while no other thread uses it.
class InformacoesFalsas final : public plataforma::IInformacoes {
public:
  CString m_processo = "kalvo.exe";
  CString m_usuario = "operador";
  std::uint32_t m_uiThread = 4660;
  CString m_guid = "{6F9619FF-8B86-D011-B42D-00C04FC964FF}";
  bool m_bMemoria = true;  ///< whether the memory queries succeed
  std::uint64_t m_uiMemoriaProcesso = 3276800;
  std::uint64_t m_uiDisponivel = 8589934592;
  std::uint64_t m_uiTotal = 17179869184;
  bool m_bVersao = true;  ///< whether the program file has a version
  plataforma::VersaoArquivo m_versaoPrograma{0x00010000, 0};
  plataforma::VersaoSistema m_versaoSO{10, 0, 19045};
  CString m_diretorioAtual = "C:\\atual\\";
  std::uint32_t m_uiErroComTexto = 2;  ///< the one error that has a text
  CString m_textoErro = "Arquivo ausente.\r\n";

  CString NomeProcesso() override { return m_processo; }
  CString UsuarioLocal() override { return m_usuario; }
  std::uint32_t IdThread() override { return m_uiThread; }
  CString NovoGuid() override { return m_guid; }
  bool MemoriaProcesso(std::uint64_t *puiBytes) override {
    *puiBytes = m_bMemoria ? m_uiMemoriaProcesso : *puiBytes;
    return m_bMemoria;
  }
  bool MemoriaMaquina(std::uint64_t *puiDisponivel, std::uint64_t *puiTotal) override {
    *puiDisponivel = m_bMemoria ? m_uiDisponivel : *puiDisponivel;
    *puiTotal = m_bMemoria ? m_uiTotal : *puiTotal;
    return m_bMemoria;
  }
  bool VersaoPrograma(plataforma::VersaoArquivo *pVersao) override {
    *pVersao = m_bVersao ? m_versaoPrograma : *pVersao;
    return m_bVersao;
  }
  plataforma::VersaoSistema VersaoSO() override { return m_versaoSO; }
  CString TextoErro(std::uint32_t erro) override { return erro == m_uiErroComTexto ? m_textoErro : CString(); }
  CString CaminhoAbsoluto(const CString &sCaminho) override { return m_diretorioAtual + sCaminho; }
};

}  // namespace apoio

#endif
