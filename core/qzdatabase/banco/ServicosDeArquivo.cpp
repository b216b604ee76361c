#include "core/qzdatabase/arquivo/ServicosDeArquivo.h"

#include "core/platform/Permanente.h"
#include "core/qzdatabase/arquivo/QZFileCopia.h"
#include "core/qzdatabase/arquivo/QZTextFile.h"
#include "core/qzdatabase/banco/QZBancoTemporario.h"
#include "core/qzdatabase/banco/QZDataBaseUtil.h"

namespace {

class ListaCriados final : public IListaCriados {
public:
  explicit ListaCriados(ModuloQZ eModulo) : m_lista(eModulo, kArquivoControle) {}

  HRESULT Inicializa(const IQZDF_Profiler &dono) override { return m_lista.Banco().Inicializa(dono); }
  std::uint64_t Procura(const CString &sNomeArquivo) override { return m_lista.Arquivo().Procura(sNomeArquivo); }
  HRESULT Acrescenta(const CString &sNomeArquivo) override {
    std::uint64_t uiPosicao = 0;
    return m_lista.Arquivo().GravaSeNova(uiPosicao, sNomeArquivo);
  }
  HRESULT Esvazia(std::uint64_t uiPosicao) override {
    // Grava takes an empty line for nothing to write; a collection of one empty line makes the stored one empty.
    CStringArray aVazia;
    aVazia.Add(CString());
    return m_lista.Arquivo().GravaColecao(uiPosicao, aVazia);
  }
  HRESULT Descarrega() override { return m_lista.Arquivo().DescarregaNoDisco(); }

private:
  CQZBancoTemporario<CQZTextFile> m_lista;
};

class DestinoCopia final : public IDestinoCopia {
public:
  DestinoCopia(ModuloQZ eModulo, const CString &sNomeArquivo, bool bForaDaLista) : m_copia(eModulo, sNomeArquivo) {
    if (bForaDaLista) {
      m_copia.Arquivo().DesabilitaControleCriacaoArquivos();
    }
  }

  HRESULT Inicializa(const IQZDF_Profiler &dono) override { return m_copia.Banco().Inicializa(dono); }
  HRESULT AbreArquivo(EModoAbertura eModo) override { return m_copia.Arquivo().AbreArquivo(eModo); }
  plataforma::IArquivoAberto &Arquivo() override { return m_copia.Arquivo().Arquivo(); }

private:
  CQZBancoTemporario<CQZFileCopia> m_copia;
};

class TextoNovo final : public ITextoNovo {
public:
  TextoNovo(ModuloQZ eModulo, const CString &sNomeArquivo) : m_texto(eModulo, sNomeArquivo) {}

  HRESULT Inicializa(const IQZDF_Profiler &dono) override { return m_texto.Banco().Inicializa(dono); }
  HRESULT GravaColecao(std::uint64_t &uiPosicao, const CStringArray &aRegistros) override {
    return m_texto.Arquivo().GravaColecao(uiPosicao, aRegistros);
  }

private:
  CQZBancoTemporario<CQZTextFile> m_texto;
};

class Servicos final : public IServicosDeArquivo {
public:
  std::unique_ptr<IListaCriados> ListaCriados(ModuloQZ eModulo) override {
    return std::make_unique<::ListaCriados>(eModulo);
  }
  std::unique_ptr<IDestinoCopia> DestinoCopia(ModuloQZ eModulo, const CString &sNomeArquivo,
                                              bool bForaDaLista) override {
    return std::make_unique<::DestinoCopia>(eModulo, sNomeArquivo, bForaDaLista);
  }
  std::unique_ptr<ITextoNovo> TextoNovo(ModuloQZ eModulo, const CString &sNomeArquivo) override {
    return std::make_unique<::TextoNovo>(eModulo, sNomeArquivo);
  }
  HRESULT MoveTRA(const CString &sEmpresa, ModuloQZ eModulo, const CString &sNomeArquivo,
                  const AntesDeMoverDeNovo &antesDeMoverDeNovo) override {
    return CQZDataBaseUtil::MoveTRA(sEmpresa, eModulo, sNomeArquivo, antesDeMoverDeNovo);
  }
  HRESULT DeletaArquivo(const CString &sEmpresa, ModuloQZ eModulo, const CString &sNomeArquivo) override {
    return CQZDataBaseUtil::DeletaArquivo(sEmpresa, eModulo, sNomeArquivo);
  }
};

}  // namespace

IServicosDeArquivo &ServicosDeArquivo() {
  return plataforma::Permanente<Servicos>();
}
