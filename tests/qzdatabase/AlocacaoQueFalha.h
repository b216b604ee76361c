#ifndef KALVO_TESTS_QZDATABASE_ALOCACAOQUEFALHA_H
#define KALVO_TESTS_QZDATABASE_ALOCACAOQUEFALHA_H

#include <cstddef>

/// Counts down with the allocations of this thread; the one that meets 1 fails. 0: none does.
extern constinit thread_local std::size_t t_alocacoesAteFalhar;

// The thread sanitizer brings operators of its own, which cannot be replaced: there no allocation fails.
#if !defined(__has_feature)
#define __has_feature(nome) 0
#endif
#if __has_feature(thread_sanitizer)
inline constexpr bool kAlocacaoPodeFalhar = false;
#else
inline constexpr bool kAlocacaoPodeFalhar = true;
#endif

#endif
