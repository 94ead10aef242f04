# Zephrin2D: `make demo` renders the demo, `make test` runs the test suite.
BUILD ?= build
JOBS ?= 2
BUILD_TYPE ?= RelWithDebInfo
CMAKE_FLAGS ?=

RENDER = $(BUILD)/tools/zephrin2d-render/zephrin2d-render
DEMO_OUT = $(abspath $(BUILD))/demo

.PHONY: all deps configure build test demo bench clean

all: build

deps:
	@./scripts/install-deps.sh

configure: deps
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=$(BUILD_TYPE) $(CMAKE_FLAGS) >/dev/null

build: configure
	@cmake --build $(BUILD) -j$(JOBS)

test: build
	@cd $(BUILD) && ctest --output-on-failure -j$(JOBS)

demo: build
	@mkdir -p $(DEMO_OUT)
	@$(RENDER) --demo shapes --frames 60 --out $(DEMO_OUT)/shapes.png
	@echo "Demo frame written to $(DEMO_OUT)/shapes.png"

bench: deps
	@cmake -S . -B $(BUILD)-bench -DCMAKE_BUILD_TYPE=Release -DZEPHRIN2D_BUILD_BENCH=ON -DZEPHRIN2D_BUILD_TESTS=OFF >/dev/null
	@cmake --build $(BUILD)-bench -j$(JOBS)
	@$(BUILD)-bench/bench/Zephrin2DBench

clean:
	rm -rf $(BUILD) $(BUILD)-bench
