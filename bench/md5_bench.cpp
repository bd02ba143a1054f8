// Digests per second of the password digest, for ASCII and Chinese passwords.
#include <benchmark/benchmark.h>

#include "access/md5.h"

namespace {

void BM_Md5Ascii(benchmark::State& state) {
  const std::u16string text = u"correct horse battery staple";
  for (auto _ : state) benchmark::DoNotOptimize(ostrakan::Md5(text));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Md5Ascii);

void BM_Md5Chinese(benchmark::State& state) {
  const std::u16string text = u"视频搜索管理员密码";
  for (auto _ : state) benchmark::DoNotOptimize(ostrakan::Md5(text));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Md5Chinese);

void BM_Md5Long(benchmark::State& state) {
  const std::u16string text(static_cast<size_t>(state.range(0)), u'a');
  for (auto _ : state) benchmark::DoNotOptimize(ostrakan::Md5(text));
  state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_Md5Long)->Arg(1024)->Arg(65536);

}  // namespace
