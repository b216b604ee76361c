#ifndef KALVO_SERVER_PROXY_DESCONHECIDOPROXY_H
#define KALVO_SERVER_PROXY_DESCONHECIDOPROXY_H

/* Included before the generated marshalling code, which names these routines of the runtime without declaring them. */

#include <unknwn.h>

HRESULT STDMETHODCALLTYPE IUnknown_QueryInterface_Proxy(IUnknown *This, REFIID riid, void **ppvObject);
ULONG STDMETHODCALLTYPE IUnknown_AddRef_Proxy(IUnknown *This);
ULONG STDMETHODCALLTYPE IUnknown_Release_Proxy(IUnknown *This);

#endif
