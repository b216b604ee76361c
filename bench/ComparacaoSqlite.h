#ifndef KALVO_BENCH_COMPARACAOSQLITE_H
#define KALVO_BENCH_COMPARACAOSQLITE_H

#include <cstdint>

struct sqlite3;

/// The sample vehicles in an SQLite table, for the same questions put to a general database in the same run.
class ComparacaoSqlite {
public:
  /// Fills an in-memory table; ends the process with a message when SQLite refuses.
  ComparacaoSqlite();
  ~ComparacaoSqlite();
  ComparacaoSqlite(const ComparacaoSqlite &) = delete;
  ComparacaoSqlite &operator=(const ComparacaoSqlite &) = delete;

  /// Runs a query and returns the number of rows.
  std::int64_t Conta(const char *lpSql) const;

private:
  sqlite3 *m_pBanco = nullptr;
};

#endif
