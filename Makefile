# The two set-up commands of the README: `make demo` (the main job) and `make test` (every test).
# Both install what they need first. Builds are incremental (Ninja + ccache); the machine has two
# cores, so jobs are kept to two. `make goldens` rewrites the layout golden files of the shipped
# templates (tests/templates/layout/) after an intended layout change; review them with git diff.

JOBS ?= 2
BUILD ?= build/release
CMAKE_FLAGS ?=

# ccache keyed on paths relative to the checkout, so every clone of the project shares one cache.
export CCACHE_BASEDIR := $(CURDIR)
export CCACHE_NOHASHDIR := 1
export CCACHE_MAXSIZE ?= 5G

.PHONY: all deps configure build demo test goldens sanitize tsan fuzz lint tidy format clean

all: build

deps:
	@scripts/install-deps.sh

configure: deps
	@cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=Release $(CMAKE_FLAGS) >/dev/null

build: configure
	@cmake --build $(BUILD) -j $(JOBS)

# The main job: the demo dealership's documents, written as PDFs into out/.
demo: configure
	@demo/run_demo.sh $(BUILD)

# Every test: unit, database (PostgreSQL on loopback), printing (CUPS) and window (Xvfb) tests.
test: build
	@cd $(BUILD) && ctest -j $(JOBS) --output-on-failure --timeout 300

# Rewrites tests/templates/layout/<template>.layout from a demo print of every shipped template
# (docs/testing.md). Running it twice in a row changes nothing.
goldens: configure
	@cmake --build $(BUILD) -j $(JOBS) --target template_layout_test
	@cd $(BUILD) && VANTOREL_UPDATE_REFERENCE=1 ctest -j $(JOBS) -L goldens --output-on-failure
	@git status --short tests/templates/layout

# Every test under AddressSanitizer and UndefinedBehaviorSanitizer. GCC 12's runtime takes some
# malloc'd thread-local blocks for old glibc ones and reads the words before them, which now and
# then crashes LeakSanitizer's tracer at exit ("Tracer caught signal 11", seen in the GTK window
# tests); intercept_tls_get_addr=0 keeps it off them (fixed in GCC 14's runtime).
sanitize: deps
	@cmake -S . -B build/asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DVANTOREL_SANITIZE=address \
	  -DVANTOREL_GUI=ON >/dev/null
	@cmake --build build/asan -j $(JOBS)
	@cd build/asan && ASAN_OPTIONS=detect_leaks=1:intercept_tls_get_addr=0 UBSAN_OPTIONS=print_stacktrace=1 \
	  LSAN_OPTIONS=suppressions=$(CURDIR)/tests/support/lsan.supp:print_suppressions=0 \
	  ctest -j $(JOBS) --output-on-failure --timeout 600

# Every parser under libFuzzer, FUZZ_SECONDS each, starting from the checked-in corpora with the
# format's dictionary (new finds go to build/fuzz, not into the repository). Each target has a
# longest input of its own: templates and expressions long enough to nest past every limit.
FUZZ_SECONDS ?= 30
FUZZ_TARGETS ?= template:131072 expr:65536 rich_text:65536 sql:16384 connection:4096
fuzz: deps
	@cmake -S . -B build/fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_C_COMPILER=clang \
	  -DCMAKE_CXX_COMPILER=clang++ -DVANTOREL_FUZZ=ON >/dev/null
	@cmake --build build/fuzz -j $(JOBS) --target $(foreach t,$(FUZZ_TARGETS),$(word 1,$(subst :, ,$(t)))_fuzz)
	@for target in $(FUZZ_TARGETS); do \
	  f=$${target%%:*}; len=$${target##*:}; \
	  mkdir -p build/fuzz/corpus/$$f && \
	  build/fuzz/fuzz/$${f}_fuzz -max_total_time=$(FUZZ_SECONDS) -timeout=10 -rss_limit_mb=1024 \
	    -max_len=$$len -dict=fuzz/$$f.dict -artifact_prefix=build/fuzz/$$f- \
	    build/fuzz/corpus/$$f fuzz/corpus/$$f 2>build/fuzz/$$f.log \
	  || { tail -40 build/fuzz/$$f.log; exit 1; }; \
	  echo "fuzz: $$f: $$(grep -o 'cov: [0-9]*' build/fuzz/$$f.log | tail -1)," \
	    "$$(grep -o 'Done [0-9]* runs' build/fuzz/$$f.log | tr -dc 0-9) runs," \
	    "$$(ls build/fuzz/corpus/$$f | wc -l) inputs kept, no crash"; \
	done

# The threading tests under ThreadSanitizer.
tsan: deps
	@cmake -S . -B build/tsan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DVANTOREL_SANITIZE=thread >/dev/null
	@cmake --build build/tsan -j $(JOBS) --target threads_test
	@# GLib, Pango, HarfBuzz, fontconfig and glibc are not built for TSan: their own locks and
	@# atomics are invisible to it, so only accesses from our (instrumented) code are checked.
	@cd build/tsan && TSAN_OPTIONS="halt_on_error=1 ignore_noninstrumented_modules=1" \
	  ctest -j $(JOBS) -L threads --output-on-failure

# Formatting check (clang-format) of every source file.
lint: deps
	@git ls-files '*.cc' '*.h' '*.c' | xargs clang-format --dry-run --Werror

# clang-tidy with the checks .clang-tidy configures, over the library and the command-line tool.
# GCC's own warning options in the compile commands are no news to clang.
tidy: build
	@run-clang-tidy -p $(BUILD) -j $(JOBS) -quiet -extra-arg=-Wno-unknown-warning-option \
	  '$(CURDIR)/(src|cli)/.*\.cc$$' >$(BUILD)/tidy.log 2>&1 \
	  || { grep -E "(error|warning): " $(BUILD)/tidy.log | sort -u | head -60; exit 1; }
	@echo "tidy: $$(grep -c '^clang-tidy' $(BUILD)/tidy.log) files, no finding"

format:
	@git ls-files '*.cc' '*.h' '*.c' | xargs clang-format -i

clean:
	rm -rf build out
