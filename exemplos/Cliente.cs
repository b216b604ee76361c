// The vehicle service from C#: appends a vehicle, finds those of its state, prints them.
//
//   csc /unsafe Cliente.cs QZDF_Veiculos.cs

using System;
using System.Runtime.InteropServices;
using Kalvo;

static class Cliente
{
    [MTAThread]
    static int Main(string[] argumentos)
    {
        IQZDF_Veiculos veiculos = null;
        try
        {
            veiculos = (IQZDF_Veiculos)new CQZDF_Veiculos();
            veiculos.Inicializa(Texto.Parametro(argumentos.Length > 0 ? argumentos[0] : "0001"), 1, 1);

            RegVeiculo veiculo = new RegVeiculo();
            veiculo.Codigo = "VAN00003";
            veiculo.Placa = "GHI3J45";
            veiculo.UF = "SC";
            veiculo.Descricao = "Furg\u00E3o de entregas";
            veiculo.iAno = 2023;
            veiculo.iTipoRodado = 4;
            veiculo.vTara = Moeda.Campo(2150.5m);
            int posicao = 0; // appends
            veiculos.Grava(ref posicao, veiculo);
            Console.WriteLine("gravado na posi\u00E7\u00E3o " + posicao);

            RegFiltro filtro = new RegFiltro(); // all zero: every vehicle
            filtro.UF = "SC";
            ResultadoBusca resultado;
            veiculos.BuscaPonteiros(filtro, out resultado);
            int[] posicoes = resultado.Posicoes();
            RegVeiculo[] achados = new RegVeiculo[posicoes.Length];
            if (posicoes.Length > 0)
            {
                veiculos.LePonteiros((uint)posicoes.Length, posicoes, achados);
            }
            foreach (RegVeiculo achado in achados)
            {
                Console.WriteLine(achado.Placa + " " + Moeda.Valor(achado.vTara) + " kg");
            }
            return 0;
        }
        catch (Exception erro) // the runtime raises different types for different result codes
        {
            Console.Error.WriteLine("0x" + Marshal.GetHRForException(erro).ToString("X8") + ": " + erro.Message);
            return 1;
        }
        finally
        {
            if (veiculos != null)
            {
                Marshal.ReleaseComObject(veiculos);
            }
        }
    }
}
