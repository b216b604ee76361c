#ifndef KALVO_CORE_ENV_QZPATH_H
#define KALVO_CORE_ENV_QZPATH_H

#include <cstdint>

#include "core/platform/Tipos.h"

/// Number of a suite module (1 to 28), or one of the pseudo-modules below that stand for shared directories.
using ModuloQZ = std::uint32_t;

/// This server's module, with the code "DF".
inline constexpr ModuloQZ QZ_DF = 1;
/// The electronic-invoice module, whose files lie in a sub-directory of module "DF".
inline constexpr ModuloQZ QZ_NFE = 23;

inline constexpr ModuloQZ kModuloInstalacao = 0xFFFFFFFE;
inline constexpr ModuloQZ kModuloRelatorios = 0xFFFFFFFD;
inline constexpr ModuloQZ kModuloMensagens = 0xFFFFFFFC;
inline constexpr ModuloQZ kModuloCadastros = 0xFFFFFFFB;

/// The maker's key below the local machine hive: the 32-bit view, named explicitly so that a 64-bit process reads what
/// the suite's 32-bit programs read.
inline constexpr char kChaveSuite[] = "SOFTWARE\\Wow6432Node\\Tarvel\\";

/// Where the system's files are. All locations come from the registry, read anew at each call; nothing fails: a missing
/// key or value gives an empty directory, and the composed path is then the bare file name. Every directory that is not
/// empty ends in one `\`. Any thread may call.
class CQZPath {
public:
  /// Full path of a file of a module (or pseudo-module) of a company.
  static CString CaminhoArquivo(ModuloQZ eModulo, const CString &sEmpresa, const CString &sNomeArquivo);

  /// The directory in which CaminhoArquivo places a file.
  static CString DiretorioModulo(ModuloQZ eModulo, const CString &sEmpresa);

  /// The company's data directory for a module; empty for a module without a code.
  static CString DiretorioEmpresa(ModuloQZ eModulo, const CString &sEmpresa);

  /// Installation directory of a module's product.
  static CString DiretorioInstalacao(ModuloQZ eModulo);

  /// A directory that all products share, by the name of its registry value ("Relatorios", "Ajuda", ...).
  static CString DiretorioCompartilhado(const CString &sNomeValor);

  /// `sEsquerda` and `sDireita` with exactly one `\` between them; when one is empty, the other.
  static CString Junta(const CString &sEsquerda, const CString &sDireita);

  /// The path with the extension of its file name (the text after the last '.') replaced, or added when it has none.
  static CString ChangeExtension(const CString &sCaminho, const CString &sExtensao);

  /// The text after the last '.' of the file name; empty when there is none.
  static CString Extensao(const CString &sCaminho);

  /// True when the extension is `lpExtensao`, given in capitals; letter case of the path does not matter.
  static bool TemExtensao(const CString &sCaminho, const char *lpExtensao);
};

#endif
