#ifndef KALVO_CORE_PLATFORM_CEXCEPTION_H
#define KALVO_CORE_PLATFORM_CEXCEPTION_H

#include <cstdint>

/// What the framework knows of a class while the program runs.
struct CRuntimeClass {
  const char *m_lpszClassName;
};

/// Root of the framework's exceptions, which are thrown by pointer. Whoever handles one for good calls Delete; the call
/// guard's translator does not.
class CException {
public:
  CException(const CException &) = delete;
  CException &operator=(const CException &) = delete;

  virtual const CRuntimeClass *GetRuntimeClass() const {
    static constexpr CRuntimeClass classe{"CException"};
    return &classe;
  }
  virtual ~CException() = default;

  /// Copies the exception's text into a buffer of `uiTamanho` bytes and always ends it with a zero byte; a null or
  /// empty buffer gets nothing. `puiAjuda`, when not null, receives the help context. False when there is no text,
  /// which is so unless a class has texts of its own.
  virtual bool GetErrorMessage(char *lpBuffer, std::uint32_t uiTamanho, std::uint32_t *puiAjuda) {
    if (lpBuffer != nullptr && uiTamanho > 0) {
      *lpBuffer = '\0';
    }
    if (puiAjuda != nullptr) {
      *puiAjuda = 0;
    }
    return false;
  }

  /// Shows the exception's text in a modal box and returns the answer; 0 when nothing was shown, which is so unless a
  /// class has texts of its own. Never to be called while locks are held.
  virtual int ReportError(std::uint32_t /*uiTipo*/, std::uint32_t /*uiAjuda*/) { return 0; }

  /// Frees the object, unless it is one that lives for the whole process.
  void Delete() {
    if (m_bDeleta) {
      delete this;
    }
  }

protected:
  /// `bDeleta` is false for an object that Delete must leave alone.
  explicit CException(bool bDeleta = true) : m_bDeleta(bDeleta) {}

private:
  const bool m_bDeleta;
};

/// The framework is out of memory. Raised without allocating: there is one object for the process.
class CMemoryException : public CException {
public:
  CMemoryException() : CException(false) {}

  const CRuntimeClass *GetRuntimeClass() const override {
    static constexpr CRuntimeClass classe{"CMemoryException"};
    return &classe;
  }
};

/// An argument outside what the callee accepts, such as an index past the end of a container.
class CInvalidArgException : public CException {
public:
  CInvalidArgException() : CException(false) {}

  const CRuntimeClass *GetRuntimeClass() const override {
    static constexpr CRuntimeClass classe{"CInvalidArgException"};
    return &classe;
  }
};

/// Raises the process's CInvalidArgException.
[[noreturn]] inline void LancaArgumentoInvalido() {
  static CInvalidArgException excecao;
  throw &excecao;
}

#endif
