# The two commands a newcomer needs: `make test` and `make demo`. Each sets itself up.
.PHONY: all deps configure build test demo bench fuzz soak clean

all: build

deps:
	@scripts/install-deps

configure: deps
	cmake --preset default

build: configure
	cmake --build --preset default

test: build
	ctest --preset default

demo: build
	@echo "agp-phone: the demo application on an embedded server; open the web page printed below,"
	@echo "or type key names here, or pipe them in, a line at a time (up, down, ok, back, softkey1, ...,"
	@echo "type TEXT); quit or Ctrl-C ends it"
	build/default/bin/agp-phone --demo --push 127.0.0.1:0 --http 127.0.0.1:0

# One table of figures, each against its baseline in the same run. The detailed Google Benchmark
# programs beside it: build/release/bench/agp_bench, agp_screen_bench and agp_picture_bench.
bench: deps
	cmake --preset release
	cmake --build --preset release --target agp_figures agp_bench agp_screen_bench agp_picture_bench
	build/release/bench/agp_figures

fuzz: deps
	@scripts/install-deps fuzz
	cmake --preset fuzz
	cmake --build --preset fuzz --target fuzz_parser fuzz_text_helpers fuzz_screens fuzz_control_api
	mkdir -p fuzz/findings build/fuzz/fuzz/corpus build/fuzz/fuzz/corpus-text build/fuzz/fuzz/corpus-screens build/fuzz/fuzz/corpus-control
	build/fuzz/fuzz/fuzz_parser -max_total_time=$${FUZZ_SECONDS:-60} -max_len=65536 -dict=fuzz/agp.dict \
	    -artifact_prefix=fuzz/findings/ build/fuzz/fuzz/corpus fuzz/corpus
	build/fuzz/fuzz/fuzz_text_helpers -max_total_time=$${FUZZ_SECONDS:-60} -max_len=4096 \
	    -artifact_prefix=fuzz/findings/ build/fuzz/fuzz/corpus-text fuzz/corpus-text
	build/fuzz/fuzz/fuzz_screens -max_total_time=$${FUZZ_SECONDS:-60} -max_len=65536 -dict=fuzz/agp.dict \
	    -timeout=60 -artifact_prefix=fuzz/findings/ build/fuzz/fuzz/corpus-screens fuzz/corpus
	build/fuzz/fuzz/fuzz_control_api -max_total_time=$${FUZZ_SECONDS:-60} -max_len=4096 \
	    -artifact_prefix=fuzz/findings/ build/fuzz/fuzz/corpus-control fuzz/corpus-control

# Ten thousand random keys and ten thousand pushes on 8 connections at once against
# agp-phone --demo, in the release build and under AddressSanitizer: no crash, every answer as
# documented, resident memory growth under 1 MB after the warm-up (release build only: the
# sanitizer's own bookkeeping grows).
soak: deps
	cmake --preset release
	cmake --build --preset release --target agp-phone agp-soak
	build/release/tests/agp-soak --agp-phone build/release/bin/agp-phone --keys 10000 --pushes 10000
	cmake --preset asan
	cmake --build --preset asan --target agp-phone agp-soak
	build/asan/tests/agp-soak --agp-phone build/asan/bin/agp-phone --keys 10000 --pushes 10000 --max-growth-kb 0

clean:
	rm -rf build
