// The C# declaration puts every byte where the interface has it. Prints what is wrong.

using System;
using System.Linq;
using System.Runtime.InteropServices;
using Kalvo;

static class DeclaracaoTeste
{
    static string Lugares(Type tipo)
    {
        return Marshal.SizeOf(tipo) +
               string.Concat(tipo.GetFields().Select(c => " " + c.Name + ":" + Marshal.OffsetOf(tipo, c.Name)));
    }

    static string Ou(Func<string> acao)
    {
        try
        {
            return acao();
        }
        catch (ArgumentException)
        {
            return "refused";
        }
    }

    static string Parametro(string texto) { return Ou(() => BitConverter.ToString(Texto.Parametro(texto))); }

    // The plate and, in the bytes behind it, the state.
    static string Placa(string placa)
    {
        return Ou(() =>
        {
            RegVeiculo veiculo = new RegVeiculo { UF = "XYZ", Placa = placa };
            byte[] bytes = new byte[168];
            Marshal.Copy(GCHandle.Alloc(veiculo, GCHandleType.Pinned).AddrOfPinnedObject(), bytes, 0, 168);
            return BitConverter.ToString(bytes, 127, 12) + " " + veiculo.Placa;
        });
    }

    static int Main()
    {
        string[,] casos = {
            { Lugares(typeof(RegVeiculo)),
              "168 vTara:0 vCapacidadeKg:8 vCapacidadeM3:16 iAno:24 iPonteiroCliente:28 szDescricao:30 szCodigoANTT:81 " +
              "szCodigo:102 szRENAVAM:115 szPlaca:127 szUF:136 iTipoCarroceria:139 iTipoRodado:140 iTipoVeiculo:141 " +
              "iTipoTransporte:142 iFiller:143 lPosicao:144 cFiller:148" },
            { Lugares(typeof(RegFiltro)),
              "200 vTaraInicial:0 vTaraFinal:8 vCapacidadeKgInicial:16 vCapacidadeKgFinal:24 vCapacidadeM3Inicial:32 " +
              "vCapacidadeM3Final:40 iAnoInicial:48 iAnoFinal:52 iPonteiroCliente:56 szDescricao:58 szCodigoANTT:109 " +
              "szCodigo:130 szRENAVAM:143 szPlaca:155 szUF:164 iTipoCarroceria:167 iTipoRodado:168 iTipoVeiculo:169 " +
              "iTipoTransporte:170 iFiller:171 lPosicao:176 cFiller:180" },
            { Lugares(typeof(ResultadoBusca)), "24 iQtd:0 Ponteiros:8" },
            { Parametro("0001"), "30-30-30-31-00-00" },
            { Parametro("0\u00E31"), "30-E3-31-00-00-00" },
            { Parametro(""), "00-00" },
            { Parametro("0\0001"), "refused" },
            { Parametro("\u65E5"), "refused" },
            { Placa("ABC1D2345"), "41-42-43-31-44-32-33-34-35-58-59-5A ABC1D2345" },
            { Placa("\u00C7"), "C7-00-00-00-00-00-00-00-00-58-59-5A \u00C7" },
            { Placa("ABC1D23456"), "refused" },
            { Moeda.Campo(8200.5m) + " " + Moeda.Valor(82005000), "82005000 8200.5" },
        };
        int falhas = 0;
        for (int i = 0; i < casos.GetLength(0); ++i)
        {
            if (casos[i, 0] != casos[i, 1])
            {
                Console.WriteLine(casos[i, 0] + " instead of " + casos[i, 1]);
                ++falhas;
            }
        }
        return falhas == 0 ? 0 : 1;
    }
}
