// The vehicle service for .NET programs: the interface, its records and the convention of its texts.
//
// Compile with /unsafe (the records hold their texts in place) and call from the multithreaded apartment ([MTAThread]).
// A program may be of 64 or of 32 bits.
//
// Texts are bytes of code page 1252 everywhere, also where the interface says "wide":
//   - a field of a record holds a text that is ended by a zero byte, or that fills the field and then has NO end mark;
//   - lpEmpresa and lpCodigo are declared as wide strings but carry 8-bit text, followed by two zero bytes at an even
//     offset, where the marshalling code looks for the end. They are byte[] here; a string would be converted to UTF-16
//     on the way and arrive as its first character.
// Texto makes and reads both forms.

using System;
using System.Runtime.InteropServices;
using System.Text;

namespace Kalvo
{
    public static class Texto
    {
        // .NET 5 and later know this code page after Encoding.RegisterProvider(CodePagesEncodingProvider.Instance).
        static readonly Encoding Pagina =
            Encoding.GetEncoding(1252, EncoderFallback.ExceptionFallback, DecoderFallback.ReplacementFallback);

        // For lpEmpresa and lpCodigo.
        public static byte[] Parametro(string texto)
        {
            byte[] bytes = EmBytes(texto);
            Array.Resize(ref bytes, (bytes.Length + 1) / 2 * 2 + 2);
            return bytes;
        }

        // Into a field of a record; the rest of the field becomes zero. A text that does not fit is refused, not cut.
        public static unsafe void Preenche(byte* campo, int largura, string texto)
        {
            byte[] bytes = EmBytes(texto);
            if (bytes.Length > largura)
            {
                throw new ArgumentException("texto mais longo que o campo de " + largura + " bytes: " + texto);
            }
            Array.Resize(ref bytes, largura);
            Marshal.Copy(bytes, 0, (IntPtr)campo, largura);
        }

        // From a field of a record: up to its first zero byte, or all of it.
        public static unsafe string Le(byte* campo, int largura)
        {
            int tamanho = 0;
            while (tamanho < largura && campo[tamanho] != 0)
            {
                ++tamanho;
            }
            byte[] bytes = new byte[tamanho];
            Marshal.Copy((IntPtr)campo, bytes, 0, tamanho);
            return Pagina.GetString(bytes);
        }

        static byte[] EmBytes(string texto)
        {
            if (texto.IndexOf('\0') >= 0)
            {
                throw new ArgumentException("texto com byte zero");
            }
            return Pagina.GetBytes(texto);
        }
    }

    // The currency fields (vTara and its like) are counts of ten-thousandths: decimal to field and back, exactly.
    public static class Moeda
    {
        public static long Campo(decimal valor) { return decimal.ToOACurrency(valor); }
        public static decimal Valor(long campo) { return decimal.FromOACurrency(campo); }
    }

    // One vehicle, 168 bytes. iFiller, lPosicao and cFiller are ignored on writing and zero on reading.
    [StructLayout(LayoutKind.Sequential, Pack = 8)]
    public unsafe struct RegVeiculo
    {
        public long vTara;
        public long vCapacidadeKg;
        public long vCapacidadeM3;
        public uint iAno;
        public ushort iPonteiroCliente;
        public fixed byte szDescricao[51];
        public fixed byte szCodigoANTT[21];
        public fixed byte szCodigo[13];
        public fixed byte szRENAVAM[12];
        public fixed byte szPlaca[9];
        public fixed byte szUF[3];
        public byte iTipoCarroceria;
        public byte iTipoRodado;
        public byte iTipoVeiculo;
        public byte iTipoTransporte;
        public byte iFiller;
        public int lPosicao;
        public fixed byte cFiller[20];

        public string Descricao
        {
            get { fixed (byte* p = szDescricao) { return Texto.Le(p, 51); } }
            set { fixed (byte* p = szDescricao) { Texto.Preenche(p, 51, value); } }
        }
        public string CodigoANTT
        {
            get { fixed (byte* p = szCodigoANTT) { return Texto.Le(p, 21); } }
            set { fixed (byte* p = szCodigoANTT) { Texto.Preenche(p, 21, value); } }
        }
        public string Codigo
        {
            get { fixed (byte* p = szCodigo) { return Texto.Le(p, 13); } }
            set { fixed (byte* p = szCodigo) { Texto.Preenche(p, 13, value); } }
        }
        public string RENAVAM
        {
            get { fixed (byte* p = szRENAVAM) { return Texto.Le(p, 12); } }
            set { fixed (byte* p = szRENAVAM) { Texto.Preenche(p, 12, value); } }
        }
        public string Placa
        {
            get { fixed (byte* p = szPlaca) { return Texto.Le(p, 9); } }
            set { fixed (byte* p = szPlaca) { Texto.Preenche(p, 9, value); } }
        }
        public string UF
        {
            get { fixed (byte* p = szUF) { return Texto.Le(p, 3); } }
            set { fixed (byte* p = szUF) { Texto.Preenche(p, 3, value); } }
        }
    }

    // The search filter, 200 bytes. Zero or empty is no criterion; the types are masks.
    [StructLayout(LayoutKind.Sequential, Pack = 8)]
    public unsafe struct RegFiltro
    {
        public long vTaraInicial;
        public long vTaraFinal;
        public long vCapacidadeKgInicial;
        public long vCapacidadeKgFinal;
        public long vCapacidadeM3Inicial;
        public long vCapacidadeM3Final;
        public uint iAnoInicial;
        public uint iAnoFinal;
        public ushort iPonteiroCliente;
        public fixed byte szDescricao[51];
        public fixed byte szCodigoANTT[21];
        public fixed byte szCodigo[13];
        public fixed byte szRENAVAM[12];
        public fixed byte szPlaca[9];
        public fixed byte szUF[3];
        public byte iTipoCarroceria;
        public byte iTipoRodado;
        public byte iTipoVeiculo;
        public byte iTipoTransporte;
        public fixed byte iFiller[5];
        public int lPosicao;
        public fixed byte cFiller[20];

        public string Descricao { set { fixed (byte* p = szDescricao) { Texto.Preenche(p, 51, value); } } }
        public string CodigoANTT { set { fixed (byte* p = szCodigoANTT) { Texto.Preenche(p, 21, value); } } }
        public string Codigo { set { fixed (byte* p = szCodigo) { Texto.Preenche(p, 13, value); } } }
        public string RENAVAM { set { fixed (byte* p = szRENAVAM) { Texto.Preenche(p, 12, value); } } }
        public string Placa { set { fixed (byte* p = szPlaca) { Texto.Preenche(p, 9, value); } } }
        public string UF { set { fixed (byte* p = szUF) { Texto.Preenche(p, 3, value); } } }
    }

    // What a search found: iQtd positions behind Ponteiros, which the client frees. Posicoes does both.
    [StructLayout(LayoutKind.Sequential, Pack = 8)]
    public struct ResultadoBusca
    {
        public uint iQtd;
        uint filler;
        public IntPtr Ponteiros;
        IntPtr pFiller;

        // The positions, ascending. To be called once: the memory behind Ponteiros is free afterwards.
        public int[] Posicoes()
        {
            int[] posicoes = new int[iQtd];
            if (iQtd > 0)
            {
                Marshal.Copy(Ponteiros, posicoes, 0, posicoes.Length);
            }
            Marshal.FreeCoTaskMem(Ponteiros);
            Ponteiros = IntPtr.Zero;
            iQtd = 0;
            return posicoes;
        }
    }

    // A failing operation raises an exception whose HResult is the result code; what the outputs then hold is lost. The
    // order of the operations is the interface.
    [ComImport, Guid("581ee5e9-6ee9-4428-87c0-6be18d374724"), InterfaceType(ComInterfaceType.InterfaceIsIUnknown)]
    public interface IQZDF_Veiculos
    {
        void Inicializa([In, MarshalAs(UnmanagedType.LPArray)] byte[] lpEmpresa, ushort iUsuario, int lNumeroSessao);

        // Position 0 appends.
        void Grava(ref int pPos, RegVeiculo Veiculo);

        void Le(int lPos, out RegVeiculo pVeiculo);

        // Not finding is success with position 0.
        void Existe([In, MarshalAs(UnmanagedType.LPArray)] byte[] lpCodigo, out int pPos, out RegVeiculo pVeiculo);

        void BuscaPonteiros(RegFiltro Filtro, out ResultadoBusca pResultado);

        // pVeiculos: an array of iQtd records.
        void LePonteiros(uint iQtd, [In, MarshalAs(UnmanagedType.LPArray, SizeParamIndex = 0)] int[] Ponteiros,
                         [Out, MarshalAs(UnmanagedType.LPArray, SizeParamIndex = 0)] RegVeiculo[] pVeiculos);

        void GetQuantidadeRegistros(out uint pQtd);
    }

    // new CQZDF_Veiculos() starts the server; cast it to IQZDF_Veiculos. Let it go with Marshal.ReleaseComObject: the
    // garbage collector comes late or never, and until then the server keeps the company's files open.
    [ComImport, Guid("68409b5a-adf8-424f-a93a-bac1844e3253"), ClassInterface(ClassInterfaceType.None)]
    public class CQZDF_Veiculos
    {
    }
}
