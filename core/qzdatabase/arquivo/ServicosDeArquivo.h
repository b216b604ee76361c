#ifndef KALVO_CORE_QZDATABASE_ARQUIVO_SERVICOSDEARQUIVO_H
#define KALVO_CORE_QZDATABASE_ARQUIVO_SERVICOSDEARQUIVO_H

#include <memory>

#include "core/env/QZPath.h"
#include "core/log/QZProfilerEmpresa.h"
#include "core/platform/Arquivos.h"
#include "core/platform/CArray.h"
#include "core/qzdatabase/disco/AberturaArquivo.h"

// What a file needs done with other files, each in a database of its own: databases stand above files, so the file asks
// through these interfaces. Failures are traced by whoever meets them first.

/// The list of the data files that the system has created in a directory: a text file, kArquivoControle.
class IListaCriados {
public:
  virtual ~IListaCriados() = default;

  /// Opens the list, exclusively, for the life of the object; other processes' holds are waited for. `dono` gives
  /// company, user and session.
  [[nodiscard]] virtual HRESULT Inicializa(const IQZDF_Profiler &dono) = 0;
  /// Position of the first line that is this name, letter case included; 0 when there is none.
  virtual std::uint64_t Procura(const CString &sNomeArquivo) = 0;
  /// Adds the name, unless another process has added it by now.
  [[nodiscard]] virtual HRESULT Acrescenta(const CString &sNomeArquivo) = 0;
  /// Makes a line empty.
  [[nodiscard]] virtual HRESULT Esvazia(std::uint64_t uiPosicao) = 0;
  /// Blocks until the list is on the storage device.
  [[nodiscard]] virtual HRESULT Descarrega() = 0;

protected:
  IListaCriados() = default;
  IListaCriados(const IListaCriados &) = default;
  IListaCriados &operator=(const IListaCriados &) = default;
};

/// The destination of a whole-file copy, which carries raw bytes.
class IDestinoCopia {
public:
  virtual ~IDestinoCopia() = default;

  /// Deletes what is at the destination's path.
  [[nodiscard]] virtual HRESULT Inicializa(const IQZDF_Profiler &dono) = 0;
  [[nodiscard]] virtual HRESULT AbreArquivo(EModoAbertura eModo) = 0;
  /// The open file; only after a successful AbreArquivo.
  virtual plataforma::IArquivoAberto &Arquivo() = 0;

protected:
  IDestinoCopia() = default;
  IDestinoCopia(const IDestinoCopia &) = default;
  IDestinoCopia &operator=(const IDestinoCopia &) = default;
};

/// Another text file, to be written from its beginning.
class ITextoNovo {
public:
  virtual ~ITextoNovo() = default;

  [[nodiscard]] virtual HRESULT Inicializa(const IQZDF_Profiler &dono) = 0;
  /// As CQZTextFile::GravaColecao.
  [[nodiscard]] virtual HRESULT GravaColecao(std::uint64_t &uiPosicao, const CStringArray &aRegistros) = 0;

protected:
  ITextoNovo() = default;
  ITextoNovo(const ITextoNovo &) = default;
  ITextoNovo &operator=(const ITextoNovo &) = default;
};

class IServicosDeArquivo {
public:
  virtual ~IServicosDeArquivo() = default;

  virtual std::unique_ptr<IListaCriados> ListaCriados(ModuloQZ eModulo) = 0;
  /// With `bForaDaLista` the copy is taken out of the list of created files instead of being checked against it.
  virtual std::unique_ptr<IDestinoCopia> DestinoCopia(ModuloQZ eModulo, const CString &sNomeArquivo,
                                                      bool bForaDaLista) = 0;
  virtual std::unique_ptr<ITextoNovo> TextoNovo(ModuloQZ eModulo, const CString &sNomeArquivo) = 0;
  /// Puts the finished "TRA" companion in place of its file, as CQZDataBaseUtil::MoveTRA does.
  [[nodiscard]] virtual HRESULT MoveTRA(const CString &sEmpresa, ModuloQZ eModulo, const CString &sNomeArquivo,
                                        const AntesDeMoverDeNovo &antesDeMoverDeNovo) = 0;
  /// Deletes a file on purpose, as CQZDataBaseUtil::DeletaArquivo does.
  [[nodiscard]] virtual HRESULT DeletaArquivo(const CString &sEmpresa, ModuloQZ eModulo,
                                              const CString &sNomeArquivo) = 0;

protected:
  IServicosDeArquivo() = default;
  IServicosDeArquivo(const IServicosDeArquivo &) = default;
  IServicosDeArquivo &operator=(const IServicosDeArquivo &) = default;
};

/// The services of this process. Provided by the floor of databases (banco/ServicosDeArquivo.cpp). Any thread may call.
IServicosDeArquivo &ServicosDeArquivo();

#endif
