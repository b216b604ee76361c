#include "bench/ComparacaoSqlite.h"

#include <sqlite3.h>

#include <cstdio>
#include <cstdlib>

#include "bench/Amostra.h"

namespace {

void Exige(int resultado, int esperado, const char *lpPasso) {
  if (resultado != esperado) {
    std::fprintf(stderr, "SQLite: %s: %s\n", lpPasso, sqlite3_errstr(resultado));
    std::exit(1);
  }
}

}  // namespace

ComparacaoSqlite::ComparacaoSqlite() {
  Exige(sqlite3_open(":memory:", &m_pBanco), SQLITE_OK, "open");
  Exige(sqlite3_exec(m_pBanco,
                     "create table veiculo(pos integer primary key, codigo text, placa text, uf text, descricao text,"
                     " ano integer, carroceria integer, rodado integer, tara integer, kg integer, cliente integer);"
                     "begin",
                     nullptr, nullptr, nullptr),
        SQLITE_OK, "create");
  sqlite3_stmt *pInsere = nullptr;
  Exige(sqlite3_prepare_v2(m_pBanco, "insert into veiculo values(?,?,?,?,?,?,?,?,?,?,?)", -1, &pInsere, nullptr),
        SQLITE_OK, "prepare");
  for (std::uint32_t n = 1; n <= kRegistrosAmostra; ++n) {
    const RegVeiculo reg = VeiculoDaAmostra(n);
    sqlite3_bind_int64(pInsere, 1, n);
    sqlite3_bind_text(pInsere, 2, reg.szCodigo, -1, SQLITE_TRANSIENT);
    sqlite3_bind_text(pInsere, 3, reg.szPlaca, -1, SQLITE_TRANSIENT);
    sqlite3_bind_text(pInsere, 4, reg.szUF, -1, SQLITE_TRANSIENT);
    sqlite3_bind_text(pInsere, 5, reg.szDescricao, -1, SQLITE_TRANSIENT);
    sqlite3_bind_int64(pInsere, 6, reg.iAno);
    sqlite3_bind_int(pInsere, 7, reg.iTipoCarroceria);
    sqlite3_bind_int(pInsere, 8, reg.iTipoRodado);
    sqlite3_bind_int64(pInsere, 9, reg.vTara);
    sqlite3_bind_int64(pInsere, 10, reg.vCapacidadeKg);
    sqlite3_bind_int(pInsere, 11, reg.iPonteiroCliente);
    Exige(sqlite3_step(pInsere), SQLITE_DONE, "insert");
    sqlite3_reset(pInsere);
  }
  sqlite3_finalize(pInsere);
  Exige(sqlite3_exec(m_pBanco, "commit;create index codigos on veiculo(codigo)", nullptr, nullptr, nullptr), SQLITE_OK,
        "commit");
}

ComparacaoSqlite::~ComparacaoSqlite() {
  sqlite3_close(m_pBanco);
}

std::int64_t ComparacaoSqlite::Conta(const char *lpSql) const {
  sqlite3_stmt *pConsulta = nullptr;
  Exige(sqlite3_prepare_v2(m_pBanco, lpSql, -1, &pConsulta, nullptr), SQLITE_OK, "prepare");
  std::int64_t linhas = 0;
  while (sqlite3_step(pConsulta) == SQLITE_ROW) {
    ++linhas;
  }
  sqlite3_finalize(pConsulta);
  return linhas;
}
