#include "client/Ajuda.h"

#include "client/Codificacao.h"

std::string TextoAjuda() {
  return R"(Uso: veiculos --empresa CODIGO [--usuario N] [--sessao N] COMANDO ...

Comandos:
  grava [campos]            inclui um veículo
  grava --posicao N [campos]
                            regrava a posição N, trocando só os campos dados
  le POSICAO...             mostra os veículos das posições
  existe TEXTO              procura pelo código ou, se não houver, pela placa
  busca [filtros]           lista os veículos que passam por todos os filtros
  conta                     mostra a quantidade de registros
  importa ARQUIVO.csv       inclui os veículos de um arquivo CSV
  diagnostico               confere a instalação: registro, diretórios, ativação

Opções globais:
  --empresa CODIGO          empresa dona da base (obrigatória, menos para
                            diagnostico)
  --usuario N               usuário, 0 a 65535 (padrão 1)
  --sessao N                sessão (padrão 1)
  --ajuda                   mostra este texto

Campos de grava (e colunas do CSV):
  --codigo T --placa T --uf T --descricao T --ano N --antt T --carroceria N
  --rodado N --tipo N --tara V --kg V --m3 V --renavam T --cliente N
  --transporte N

Filtros de busca:
  --tara-min V --tara-max V --kg-min V --kg-max V --m3-min V --m3-max V
  --ano-min N --ano-max N --cliente N
  --descricao T --antt T --codigo T --renavam T --placa T --uf T
                            texto exato, ou com * e ? (menos --uf). O primeiro
                            texto com * ou ?, na ordem acima, decide sozinho:
                            os de texto seguintes e os de tipo não são olhados
  --carrocerias 0,2         tipos de carroceria aceitos, 0 a 5
  --rodados 1,3             tipos de rodado aceitos, 1 a 6
  --tipos 0,1               tipos de veículo aceitos (1: qualquer um menos 0)
  --transportes 0,1         tipos de transporte aceitos (1: qualquer um menos 0)
  --so-posicoes             mostra só as posições
  --limite N                mostra no máximo N veículos

Outras opções:
  --csv                     le, existe e busca: saída em CSV
  --tudo-ou-nada            importa: confere todas as linhas antes e não grava
                            nada se houver linha ruim

Valores V têm até 4 casas decimais, com vírgula ou ponto e sem separador de
milhar.

Código de saída: 0 sucesso; 1 a operação falhou; 2 uso errado; 3 não encontrado
(existe); 4 houve linhas recusadas (importa).
)"_pt;
}
