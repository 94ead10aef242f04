# Zephrin2D: `make demo` renders the demo, `make test` runs the test suite.
BUILD ?= build
MAKEFLAGS += --no-print-directory
JOBS ?= 2
BUILD_TYPE ?= RelWithDebInfo
CMAKE_FLAGS ?=

RENDER = $(BUILD)/tools/zephrin2d-render/zephrin2d-render
IMPORT = $(BUILD)/tools/zephrin2d-import/zephrin2d-import
IMPORTED = $(BUILD)/examples/imported/zephrin2d-imported
DEMO_OUT = $(abspath $(BUILD))/demo

# Reliability: sanitizers, fuzzing, leaks and the soak run (docs/reliability.md).
SANITIZE_BUILD ?= build-sanitize
FUZZ_BUILD ?= build-fuzz
SECONDS ?= 20
FRAMES ?= 100000
# The GL driver stays loaded to the end: Mesa unloads it at eglTerminate, and
# what its globals still held would then look leaked to LeakSanitizer.
GL_DRIVER ?= $(firstword $(wildcard /usr/lib/*/dri/swrast_dri.so))
SAN_ENV = LD_PRELOAD=$(GL_DRIVER) \
  ASAN_OPTIONS=halt_on_error=1:detect_leaks=1:abort_on_error=1:verify_asan_link_order=0 \
  LSAN_OPTIONS=suppressions=$(CURDIR)/tests/lsan.supp:print_suppressions=0 \
  UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
SOAK = $(BUILD)/tools/zephrin2d-soak/zephrin2d-soak

# Test power (docs/testing.md): coverage of the libraries, and mutation testing.
COVERAGE_BUILD ?= build-coverage
MUTATION_BUILD ?= build-mutation
SEED ?= 16
MUTANTS ?= 200

# Cross builds for ARM (docs/porting.md): ARCH=armhf or arm64, built in
# build-ARCH/ against build-sysroot-ARCH/, tested under qemu-user. The host
# build comes first: the cross suite compares datasets with its tools.
ARCH ?= armhf

.PHONY: all deps deps-reliability configure build test demo bench clean test-sanitize fuzz leak-check soak coverage mutation cross test-cross

all: build

deps:
	@./scripts/install-deps.sh

configure: deps
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=$(BUILD_TYPE) $(CMAKE_FLAGS) >/dev/null

build: configure
	@cmake --build $(BUILD) -j$(JOBS)

test: build
	@cd $(BUILD) && ctest --output-on-failure -j$(JOBS)

# Only the tools the demo runs are built for it; the build's own output goes to a log.
DEMO_TARGETS = zephrin2d-render zephrin2d-import zephrin2d-imported
demo: configure
	@echo "Building $(DEMO_TARGETS) (log: $(BUILD)/demo-build.log)"
	@cmake --build $(BUILD) -j$(JOBS) --target $(DEMO_TARGETS) >$(BUILD)/demo-build.log 2>&1 || { cat $(BUILD)/demo-build.log; exit 1; }
	@mkdir -p $(DEMO_OUT)
	@$(RENDER) --demo meadow --frames 90 --out $(DEMO_OUT)/meadow.png --contact-sheet $(DEMO_OUT)/meadow-contact-sheet.png 2>/dev/null
	@$(RENDER) --demo shapes --frames 60 --out $(DEMO_OUT)/shapes.png 2>/dev/null
	@echo "Demo frame written to $(DEMO_OUT)/meadow.png"
	@echo "Contact sheet (every 8th frame) written to $(DEMO_OUT)/meadow-contact-sheet.png"
	@echo "Shapes demo frame written to $(DEMO_OUT)/shapes.png"
	@$(IMPORT) examples/imported/meadow.tmx -o $(DEMO_OUT)/imported >/dev/null
	@$(IMPORT) examples/imported/knight.json -o $(DEMO_OUT)/imported >/dev/null
	@$(IMPORTED) $(DEMO_OUT)/imported/ 60 $(DEMO_OUT)/imported.png >/dev/null 2>&1
	@echo "Imported Tiled map and Aseprite actor drawn to $(DEMO_OUT)/imported.png"

cross: build
	@./scripts/install-deps.sh --cross $(ARCH)
	@./scripts/make-sysroot.sh $(ARCH)
	@cmake --preset $(ARCH) -DZEPHRIN2D_HOST_BUILD_DIR=$(abspath $(BUILD)) $(CMAKE_FLAGS) >/dev/null
	@cmake --build build-$(ARCH) -j$(JOBS)

test-cross: cross
	@cd build-$(ARCH) && ctest --output-on-failure -j$(JOBS)

# Benchmarks against the driver's floor and SDL2: CPU time and memory with
# Google Benchmark, instruction counts with callgrind (COUNT_RUNS runs of
# COUNT_FRAMES frames each for the ways in COUNT_WAYS and for every load; one
# run of COUNT_ONCE_FRAMES frames for the slow comparisons in COUNT_ONCE_WAYS);
# docs/performance.md is regenerated from them. It fails, after writing the
# doc, when two runs of a count differ by more than 0.5 % or a count failed.
COUNT_FRAMES ?= 2
COUNT_RUNS ?= 2
COUNT_WAYS ?= zephrin2d,floor,colors
COUNT_ONCE_WAYS ?= immediate,sdl2
COUNT_ONCE_FRAMES ?= 1
BENCH_BIN = $(BUILD)-bench/bench
bench:
	@./scripts/install-deps.sh --bench
	@cmake -S . -B $(BUILD)-bench -DCMAKE_BUILD_TYPE=Release -DZEPHRIN2D_BUILD_BENCH=ON -DZEPHRIN2D_BUILD_TESTS=OFF $(CMAKE_FLAGS) >/dev/null
	@cmake --build $(BUILD)-bench -j$(JOBS)
	@nice $(BENCH_BIN)/Zephrin2DBench --benchmark_out=$(BUILD)-bench/bench.json --benchmark_out_format=json
	@$(BENCH_BIN)/Zephrin2DPeerCheck
	@python3 bench/count_instructions.py $(BENCH_BIN)/Zephrin2DFrameCount $(BUILD)-bench/counts.json \
	  --frames $(COUNT_FRAMES) --runs $(COUNT_RUNS) --jobs $(JOBS) --ways $(COUNT_WAYS) \
	  --once-ways $(COUNT_ONCE_WAYS) --once-frames $(COUNT_ONCE_FRAMES) --load-program $(BENCH_BIN)/Zephrin2DLoadCount
	@python3 bench/perf_report.py $(BUILD)-bench/bench.json $(BUILD)-bench/counts.json docs/performance.md

deps-reliability:
	@./scripts/install-deps.sh --reliability

# The whole test suite with AddressSanitizer, LeakSanitizer and UBSan (gcc).
test-sanitize: deps
	@cmake -S . -B $(SANITIZE_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DZEPHRIN2D_SANITIZE=ON $(CMAKE_FLAGS) >/dev/null
	@cmake --build $(SANITIZE_BUILD) -j$(JOBS)
	@cd $(SANITIZE_BUILD) && $(SAN_ENV) ctest --output-on-failure -j$(JOBS)

# libFuzzer targets (clang), each run for SECONDS on its corpus.
fuzz: deps-reliability
	@CC=clang-14 CXX=clang++-14 cmake -S fuzz -B $(FUZZ_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
	@cmake --build $(FUZZ_BUILD) -j$(JOBS)
	@fuzz/run.sh $(FUZZ_BUILD) $(SECONDS)

# The renderer and the test programs under valgrind memcheck: no definite leak.
leak-check: deps-reliability build
	@./scripts/leak-check.sh $(BUILD)

# FRAMES frames of the soak scene; samples in $(BUILD)/soak.csv.
soak: build
	@$(SOAK) --frames $(FRAMES) --csv $(BUILD)/soak.csv

# Line and branch coverage of Zephrin2D/Src and Platform/src by the whole suite.
coverage:
	@./scripts/install-deps.sh --coverage
	@cmake -S . -B $(COVERAGE_BUILD) -DCMAKE_BUILD_TYPE=Debug -DCMAKE_C_FLAGS=--coverage \
	  -DCMAKE_CXX_FLAGS=--coverage -DCMAKE_EXE_LINKER_FLAGS=--coverage -DCMAKE_SHARED_LINKER_FLAGS=--coverage >/dev/null
	@cmake --build $(COVERAGE_BUILD) -j$(JOBS)
	@find $(COVERAGE_BUILD) -name '*.gcda' -delete
	@cd $(COVERAGE_BUILD) && ctest -j$(JOBS) --output-on-failure
	@gcovr -r . $(COVERAGE_BUILD) --filter 'Zephrin2D/Src/' --filter 'Platform/src/' \
	  --exclude-throw-branches --exclude-unreachable-branches --print-summary \
	  --txt $(COVERAGE_BUILD)/coverage.txt --html-details $(COVERAGE_BUILD)/coverage.html
	@echo "Coverage report: $(COVERAGE_BUILD)/coverage.txt and coverage.html"

# A seeded sample of MUTANTS mutants of the libraries, each run against the suite;
# REPLAY=FILE.json runs the mutants of an earlier sample or report instead.
mutation: deps
	@nice -n 19 python3 scripts/mutation.py --build $(MUTATION_BUILD) --seed $(SEED) --count $(MUTANTS) \
	  $(if $(REPLAY),--replay $(REPLAY))

clean:
	rm -rf $(BUILD) build-armhf build-arm64 $(BUILD)-bench $(SANITIZE_BUILD) $(FUZZ_BUILD) $(COVERAGE_BUILD) $(MUTATION_BUILD)
