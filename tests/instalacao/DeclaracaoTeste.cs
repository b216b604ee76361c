// The C# declaration puts every byte where the interface has it. Prints what is wrong.

using System;
using System.Runtime.InteropServices;
using Kalvo;

static class DeclaracaoTeste
{
    static int falhas;

    static void Confere<T>(string nome, T esperado, T veio)
    {
        if (!esperado.Equals(veio))
        {
            Console.WriteLine(nome + ": " + veio + " instead of " + esperado);
            ++falhas;
        }
    }

    static void Lugares(Type tipo, int tamanho, string campos)
    {
        Confere(tipo.Name, tamanho, Marshal.SizeOf(tipo));
        foreach (string campo in campos.Split(' '))
        {
            string[] partes = campo.Split(':');
            Confere(campo, int.Parse(partes[1]), (int)Marshal.OffsetOf(tipo, partes[0]));
        }
    }

    static string Recusado(Action acao)
    {
        try
        {
            acao();
            return "taken";
        }
        catch (ArgumentException)
        {
            return "refused";
        }
    }

    static string Bytes(RegVeiculo veiculo, int lugar, int quantos)
    {
        IntPtr memoria = Marshal.AllocHGlobal(168);
        byte[] bytes = new byte[168];
        Marshal.StructureToPtr(veiculo, memoria, false);
        Marshal.Copy(memoria, bytes, 0, 168);
        Marshal.FreeHGlobal(memoria);
        return BitConverter.ToString(bytes, lugar, quantos);
    }

    static int Main()
    {
        Lugares(typeof(RegVeiculo), 168,
                "vTara:0 vCapacidadeKg:8 vCapacidadeM3:16 iAno:24 iPonteiroCliente:28 szDescricao:30 szCodigoANTT:81 " +
                "szCodigo:102 szRENAVAM:115 szPlaca:127 szUF:136 iTipoCarroceria:139 iTipoRodado:140 iTipoVeiculo:141 " +
                "iTipoTransporte:142 iFiller:143 lPosicao:144 cFiller:148");
        Lugares(typeof(RegFiltro), 200,
                "vTaraInicial:0 vTaraFinal:8 vCapacidadeKgInicial:16 vCapacidadeKgFinal:24 vCapacidadeM3Inicial:32 " +
                "vCapacidadeM3Final:40 iAnoInicial:48 iAnoFinal:52 iPonteiroCliente:56 szDescricao:58 szCodigoANTT:109 " +
                "szCodigo:130 szRENAVAM:143 szPlaca:155 szUF:164 iTipoCarroceria:167 iTipoRodado:168 iTipoVeiculo:169 " +
                "iTipoTransporte:170 iFiller:171 lPosicao:176 cFiller:180");
        Lugares(typeof(ResultadoBusca), 24, "iQtd:0 Ponteiros:8 pFiller:16");

        Confere("even", "30-30-30-31-00-00", BitConverter.ToString(Texto.Parametro("0001")));
        Confere("odd", "30-E3-31-00-00-00", BitConverter.ToString(Texto.Parametro("0\u00E31")));
        Confere("empty", "00-00", BitConverter.ToString(Texto.Parametro("")));
        Confere("zero byte", "refused", Recusado(() => Texto.Parametro("0\0001")));
        Confere("not in the code page", "refused", Recusado(() => Texto.Parametro("\u65E5")));

        RegVeiculo veiculo = new RegVeiculo();
        veiculo.UF = "XYZ";
        veiculo.Placa = "ABC1D2345"; // full, the state right behind it
        Confere("full", "41-42-43-31-44-32-33-34-35-58-59-5A", Bytes(veiculo, 127, 12));
        Confere("full", "ABC1D2345", veiculo.Placa);
        veiculo.Placa = "\u00C7";
        Confere("short", "C7-00-00-00-00-00-00-00-00-58", Bytes(veiculo, 127, 10));
        Confere("short", "\u00C7", veiculo.Placa);
        Confere("too long", "refused", Recusado(() => veiculo.Placa = "ABC1D23456"));
        veiculo.vTara = Moeda.Campo(8200.5m);
        Confere("currency", 82005000, veiculo.vTara);
        Confere("currency", 8200.5m, Moeda.Valor(veiculo.vTara));
        return falhas == 0 ? 0 : 1;
    }
}
