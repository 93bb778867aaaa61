# The two set-up commands of the README: `make demo` (the main job) and `make test` (every test).
# Both install what they need first. Builds are incremental (Ninja + ccache); the machine has two
# cores, so jobs are kept to two.

JOBS ?= 2
BUILD ?= build/release
CMAKE_FLAGS ?=

.PHONY: all deps configure build demo test sanitize tsan lint format clean

all: build

deps:
	@scripts/install-deps.sh

configure: deps
	@cmake -S . -B $(BUILD) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo $(CMAKE_FLAGS) >/dev/null

build: configure
	@cmake --build $(BUILD) -j $(JOBS)

# The main job: the demo dealership's documents, written as PDFs into out/.
demo: configure
	@demo/run_demo.sh $(BUILD)

# Every test: unit, database (PostgreSQL on loopback), printing (CUPS) and window (Xvfb) tests.
test: build
	@cd $(BUILD) && ctest -j $(JOBS) --output-on-failure --timeout 300

# The unit tests under AddressSanitizer and UndefinedBehaviorSanitizer.
sanitize: deps
	@cmake -S . -B build/asan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DVANTOREL_SANITIZE=address \
	  -DVANTOREL_GUI=ON >/dev/null
	@cmake --build build/asan -j $(JOBS)
	@cd build/asan && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
	  LSAN_OPTIONS=suppressions=$(CURDIR)/tests/support/lsan.supp \
	  ctest -j $(JOBS) -L unit --output-on-failure --timeout 600

# The threading tests under ThreadSanitizer.
tsan: deps
	@cmake -S . -B build/tsan -G Ninja -DCMAKE_BUILD_TYPE=Debug -DVANTOREL_SANITIZE=thread >/dev/null
	@cmake --build build/tsan -j $(JOBS) --target threads_test
	@cd build/tsan && TSAN_OPTIONS=halt_on_error=1 ctest -j $(JOBS) -L threads --output-on-failure

# Formatting check (clang-format) of every source file.
lint:
	@git ls-files '*.cc' '*.h' '*.c' | xargs clang-format --dry-run --Werror

format:
	@git ls-files '*.cc' '*.h' '*.c' | xargs clang-format -i

clean:
	rm -rf build out
