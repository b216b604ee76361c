#ifndef KALVO_CORE_PLATFORM_CEXCEPTION_H
#define KALVO_CORE_PLATFORM_CEXCEPTION_H

/// Root of the framework's exceptions, which are thrown by pointer. Whoever handles one for good calls Delete; the call
/// guard's translator does not.
class CException {
public:
  virtual ~CException() = default;
  CException(const CException &) = delete;
  CException &operator=(const CException &) = delete;

  /// Frees the object, unless it is one that lives for the whole process.
  virtual void Delete() { delete this; }

protected:
  CException() = default;
};

/// The framework is out of memory. Raised without allocating: there is one object for the process.
class CMemoryException : public CException {
public:
  void Delete() override {}
};

/// An argument outside what the callee accepts, such as an index past the end of a container.
class CInvalidArgException : public CException {
public:
  void Delete() override {}
};

/// Raises the process's CInvalidArgException.
[[noreturn]] inline void LancaArgumentoInvalido() {
  static CInvalidArgException excecao;
  throw &excecao;
}

#endif
