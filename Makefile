# The commands people type. CMake does the building; this file makes sure the
# tools are there and runs the tests the way CI does.

BUILD_DIR      ?= build
ASAN_BUILD_DIR ?= build-asan
JOBS           ?= 2
CMAKE_ENV       = CC=clang CXX=clang++ OBJC=clang OBJCXX=clang++
XVFB            = xvfb-run -a -s "-screen 0 1024x768x24"
# A private temp dir: GNUstep's helper daemons (gdnc, gpbs) live under it.
TEST_ENV        = TMPDIR=$(abspath $(BUILD_DIR))/tmp GNUSTEP_USER_ROOT=$(abspath $(BUILD_DIR))/GNUstep

REQUIRED_TOOLS = clang cmake gnustep-config xvfb-run
MISSING = $(strip $(foreach t,$(REQUIRED_TOOLS),$(if $(shell command -v $(t) 2>/dev/null),,$(t))))

.PHONY: all deps build check check-asan install demo bench clean fuzz fuzz-build fuzz-smoke

PREFIX ?= /usr/local

all: build

deps:
ifneq ($(MISSING),)
	@echo "Missing: $(MISSING); installing dependencies"
	tools/install-deps
else
	@if [ ! -f /usr/include/gtest/gtest.h ] || [ ! -f /usr/include/Block.h ]; then tools/install-deps; fi
endif

$(BUILD_DIR)/Makefile: | deps
	$(CMAKE_ENV) cmake -S . -B $(BUILD_DIR) -DCMAKE_BUILD_TYPE=Debug

build: deps $(BUILD_DIR)/Makefile
	cmake --build $(BUILD_DIR) -j$(JOBS)

check: build
	@mkdir -p $(BUILD_DIR)/tmp
	# A test is run a second time only if it fails the first: under load the
	# shared Xvfb has refused a connection now and then. Tests that need the
	# key window can lose it to a window of the test running beside them on
	# the same display: what still fails is run once more, alone.
	cd $(BUILD_DIR) && $(TEST_ENV) $(XVFB) sh -c 'ctest -j$(JOBS) --repeat until-pass:2 > ctest-parallel.log 2>&1 || { grep -E "tests passed|\*\*\*" ctest-parallel.log; ctest --rerun-failed --output-on-failure -j1; }'

check-asan: deps
	$(CMAKE_ENV) cmake -S . -B $(ASAN_BUILD_DIR) -DCMAKE_BUILD_TYPE=Debug -DTALVO_SANITIZE=ON
	cmake --build $(ASAN_BUILD_DIR) -j$(JOBS)
	@mkdir -p $(ASAN_BUILD_DIR)/tmp
	# The install test builds an uninstrumented program: not for this build.
	cd $(ASAN_BUILD_DIR) && TMPDIR=$(abspath $(ASAN_BUILD_DIR))/tmp $(XVFB) sh -c 'ctest -j$(JOBS) -LE install --repeat until-pass:2 > ctest-parallel.log 2>&1 || { grep -E "tests passed|\*\*\*" ctest-parallel.log; ctest --rerun-failed --output-on-failure -j1; }'
	# The fuzz targets, each for a fixed number of runs from its corpus.
	$(MAKE) fuzz-smoke

# libFuzzer targets (fuzz/): the visual format parser, the layout solver,
# Quartz images with trimming, Image I/O's header reader and decoders.
# Built apart, with coverage and sanitizers.
# `make fuzz` runs each for FUZZ_SECONDS, one after the other, growing a
# corpus in the build directory from the seeds in fuzz/corpus/; reproducers
# of failures land in $(FUZZ_BUILD_DIR)/crashes/.
FUZZ_BUILD_DIR ?= build-fuzz
FUZZ_TARGETS   ?= visual_format layout_solver cg_image image_header image_decode
FUZZ_SECONDS   ?= 300
FUZZ_RUNS      ?= 20000

fuzz-build: deps
	CC=clang CXX=clang++ cmake -S fuzz -B $(FUZZ_BUILD_DIR)
	cmake --build $(FUZZ_BUILD_DIR) -j$(JOBS)

fuzz: fuzz-build
	@for t in $(FUZZ_TARGETS); do \
	  mkdir -p $(FUZZ_BUILD_DIR)/corpus/$$t $(FUZZ_BUILD_DIR)/crashes; \
	  echo "== fuzz_$$t for $(FUZZ_SECONDS) s"; \
	  $(FUZZ_BUILD_DIR)/fuzz_$$t -max_total_time=$(FUZZ_SECONDS) -timeout=10 -rss_limit_mb=2048 \
	    -print_final_stats=1 -artifact_prefix=$(FUZZ_BUILD_DIR)/crashes/$$t- \
	    $(FUZZ_BUILD_DIR)/corpus/$$t fuzz/corpus/$$t || exit 1; \
	done

# A short deterministic run of each target (part of check-asan).
fuzz-smoke: fuzz-build
	@for t in $(FUZZ_TARGETS); do \
	  mkdir -p $(FUZZ_BUILD_DIR)/smoke/$$t $(FUZZ_BUILD_DIR)/crashes; \
	  echo "== fuzz_$$t, $(FUZZ_RUNS) runs"; \
	  if ! $(FUZZ_BUILD_DIR)/fuzz_$$t -runs=$(FUZZ_RUNS) -seed=1 -timeout=10 -rss_limit_mb=2048 \
	      -artifact_prefix=$(FUZZ_BUILD_DIR)/crashes/$$t- \
	      $(FUZZ_BUILD_DIR)/smoke/$$t fuzz/corpus/$$t > $(FUZZ_BUILD_DIR)/smoke/$$t.log 2>&1; then \
	    cat $(FUZZ_BUILD_DIR)/smoke/$$t.log; exit 1; \
	  fi; \
	  tail -n 1 $(FUZZ_BUILD_DIR)/smoke/$$t.log; \
	done

# With a display: the gallery's window. Without one: every page rendered to
# build/gallery/ under a private X server.
demo: build
	@if [ -n "$${DISPLAY:-}" ]; then \
	  $(BUILD_DIR)/talvo-gallery; \
	else \
	  status=0; \
	  $(XVFB) $(BUILD_DIR)/talvo-gallery --headless $(abspath $(BUILD_DIR))/gallery \
	    -GSSuppressAppIcon YES > $(BUILD_DIR)/gallery.log 2>&1 || status=$$?; \
	  grep -v -E 'BadWindow|X-Windows error|on display:|type: |serial number:|request code:|offsets for style' \
	    $(BUILD_DIR)/gallery.log; \
	  exit $$status; \
	fi

# Benchmarks in an optimised build of their own.
bench: deps
	tools/install-deps --bench
	$(CMAKE_ENV) cmake -S . -B build-release -DCMAKE_BUILD_TYPE=Release -DTALVO_BUILD_TESTS=OFF
	cmake --build build-release -j$(JOBS) --target LayoutSolverBench TimingCurveBench ImageBench SplitViewBench QuartzBench ImageLoadingBench LanczosBench ImageResampleBench WindowCaptureBench ZoomEffectBench LayerRenderBench TrackingAreaBench ControlsBench
	build-release/bench/LayoutSolverBench
	build-release/bench/TimingCurveBench
	$(XVFB) build-release/bench/SplitViewBench 2>&1 | grep -v -E 'BadWindow|X-Windows error|on display:|type: |serial number:|request code:|offsets for style'
	$(XVFB) build-release/bench/ImageBench 2>&1 | grep -v -E 'BadWindow|X-Windows error|on display:|type: |serial number:|request code:|offsets for style'
	$(XVFB) build-release/bench/QuartzBench --benchmark_repetitions=5 --benchmark_display_aggregates_only=true 2>&1 | grep -v -E 'BadWindow|X-Windows error|on display:|type: |serial number:|request code:|offsets for style'
	$(XVFB) bench/compare-trim.py build-release/bench/ImageBench
	/usr/bin/python3 bench/compare-kiwi.py build-release/bench/LayoutSolverBench
	build-release/bench/ImageLoadingBench
	/usr/bin/python3 bench/compare-header.py build-release/bench/ImageLoadingBench
	build-release/bench/LanczosBench
	/usr/bin/python3 bench/compare-lanczos.py build-release/bench/LanczosBench
	$(XVFB) build-release/bench/ImageResampleBench
	$(XVFB) build-release/bench/LayerRenderBench
	$(XVFB) build-release/bench/ZoomEffectBench
	$(XVFB) build-release/bench/TrackingAreaBench
	$(XVFB) build-release/bench/ControlsBench
	$(XVFB) bench/compare-capture.sh build-release/bench/WindowCaptureBench

install: build
	cmake --install $(BUILD_DIR) --prefix $(PREFIX)

clean:
	rm -rf $(BUILD_DIR) $(ASAN_BUILD_DIR)
