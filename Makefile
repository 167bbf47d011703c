# The two commands a newcomer needs: `make test` and `make demo`. Each sets itself up.
.PHONY: all deps configure build test demo bench fuzz clean

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
	cmake --build --preset fuzz --target fuzz_parser fuzz_text_helpers
	mkdir -p fuzz/findings build/fuzz/fuzz/corpus build/fuzz/fuzz/corpus-text
	build/fuzz/fuzz/fuzz_parser -max_total_time=$${FUZZ_SECONDS:-60} -max_len=65536 -dict=fuzz/agp.dict \
	    -artifact_prefix=fuzz/findings/ build/fuzz/fuzz/corpus fuzz/corpus
	build/fuzz/fuzz/fuzz_text_helpers -max_total_time=$${FUZZ_SECONDS:-60} -max_len=4096 \
	    -artifact_prefix=fuzz/findings/ build/fuzz/fuzz/corpus-text fuzz/corpus-text

clean:
	rm -rf build
