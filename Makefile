# The two set-up commands: `make run` and `make test`. Everything else builds on them.
BUILD ?= build
CMAKE_FLAGS ?=
PROFILE ?= default
A11Y ?=
FUZZ_TIME ?= 20
SEED ?=
EVENTS ?=

.PHONY: all deps configure build run test soak bench tour format clean fuzz check-asan check-valgrind monkey

all: build

deps:
	@scripts/install-deps.sh

$(BUILD)/build.ninja: CMakeLists.txt | deps
	cmake -S . -B $(BUILD) -G Ninja $(CMAKE_FLAGS)

configure: deps $(BUILD)/build.ninja

build: configure
	cmake --build $(BUILD)

run: build
	@A11Y=$(A11Y) scripts/run.sh $(BUILD) $(PROFILE)

test: build
	cd $(BUILD) && ctest --output-on-failure -j2
	@grep -h '^fault matrix:' $(BUILD)/Testing/Temporary/LastTest.log | tail -1

# The load and lifecycle tests at full size, and the fault matrix, with what they measured.
soak: build
	cd $(BUILD) && QUILLSET_SOAK=1 bin/settings_soak_test --gtest_brief=1
	cd $(BUILD) && QUILLSET_SOAK=1 bin/pages_soak_test --gtest_brief=1 2>pages-soak.log
	cd $(BUILD) && bin/fault_matrix_e2e_test --gtest_brief=1

# A release build of its own (build-release/), so that build/ stays as the tests want it.
bench: deps
	@scripts/bench.sh build-release $(BUILD)/bench.json

tour: build
	@scripts/tour.sh $(BUILD)

# The checks; fuzz and check-asan build in directories of their own (build-fuzz, build-asan).
fuzz:
	@scripts/install-deps.sh fuzz
	@FUZZ_TIME=$(FUZZ_TIME) scripts/fuzz.sh build-fuzz

check-asan: deps
	@scripts/check-asan.sh build-asan

# A monkey on the simulated watch, under the sanitizers (build-asan/): by default 10,000 events
# across every profile. SEED=N EVENTS=M (a profile) PROFILE=P replay a run.
monkey: deps
	@cmake -S . -B build-asan -G Ninja -DQUILLSET_SANITIZE=ON >/dev/null
	@ASAN_OPTIONS=detect_leaks=0 cmake --build build-asan
	@python3 scripts/monkey.py build-asan $(if $(SEED),--seed $(SEED)) \
		$(if $(EVENTS),--events $(EVENTS)) \
		$(if $(filter command line environment,$(origin PROFILE)),--profile $(PROFILE))

check-valgrind: build
	@scripts/install-deps.sh valgrind
	@scripts/check-valgrind.sh $(BUILD)

format:
	@git ls-files '*.cpp' '*.h' | xargs clang-format -i

clean:
	rm -rf $(BUILD) build-fuzz build-asan build-release out
