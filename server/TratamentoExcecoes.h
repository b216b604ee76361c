#ifndef KALVO_SERVER_TRATAMENTOEXCECOES_H
#define KALVO_SERVER_TRATAMENTOEXCECOES_H

/// Has structured exceptions that leave a call end the process. By default the component platform takes them, answers
/// the client and goes on with whatever state they left. Needs COM to be initialised, before the first call comes in. A
/// platform that does not offer the choice is left as it is; the call guard then releases what the call held.
void DesligaTratamentoDeExcecoes();

#endif
