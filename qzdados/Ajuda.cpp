#include "qzdados/Ajuda.h"

#include "client/Codificacao.h"

std::string TextoAjuda() {
  return R"(Uso: qzdados COMANDO ...

Examina os arquivos de dados de uma empresa sem o servidor. Só lê os arquivos
que recebe; o que grava é sempre um arquivo novo.

Comandos:
  verifica PASTA|ARQUIVO... examina cada arquivo e escreve uma linha de cada um
  lista ARQUIVO             mostra os registros, ou as linhas de um texto
  recupera ARQUIVO --em NOVO
                            grava uma cópia reparada: cabeçalho refeito, sobra
                            do fim cortada, registros inteiros nas suas posições
  cabecalho poe ARQUIVO --em NOVO
  cabecalho tira ARQUIVO --em NOVO
                            grava uma cópia com, ou sem, cabeçalho
  versao --em NOVO          grava o DFVEIVS.DAT de uma base já convertida que
                            perdeu o seu

Opções:
  --detalhes                verifica: tudo o que se sabe de cada arquivo
  --de N --ate N            lista: da posição N, até a posição N
  --csv  --json             lista: saída em CSV ou JSON, e não em tabela
  --em NOVO                 o arquivo a gravar, que não pode existir
  --como NOME               toma o arquivo pelo que tem este nome no servidor,
                            por exemplo DFVEIC.DAT para uma cópia dele
  --ajuda                   mostra este texto
  --versao                  mostra a versão do programa

Código de saída: 0 são; 1 reparável; 2 danificado; 3 não pôde ser lido ou
gravado; 4 uso errado. De vários arquivos vale o pior.
)"_pt;
}
