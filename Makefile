# The two set-up commands: `make run` and `make test`. Everything else builds on them.
BUILD ?= build
CMAKE_FLAGS ?=
PROFILE ?= default

.PHONY: all deps configure build run test bench tour format clean

all: build

deps:
	@scripts/install-deps.sh

$(BUILD)/build.ninja: CMakeLists.txt | deps
	cmake -S . -B $(BUILD) -G Ninja $(CMAKE_FLAGS)

configure: deps $(BUILD)/build.ninja

build: configure
	cmake --build $(BUILD)

run: build
	@scripts/run.sh $(BUILD) $(PROFILE)

test: build
	cd $(BUILD) && ctest --output-on-failure -j2
	@grep -h '^fault matrix:' $(BUILD)/Testing/Temporary/LastTest.log | tail -1

# A release build of its own (build-release/), so that build/ stays as the tests want it.
bench: deps
	@scripts/bench.sh build-release $(BUILD)/bench.json

tour: build
	@scripts/tour.sh $(BUILD)

format:
	@git ls-files '*.cpp' '*.h' | xargs clang-format -i

clean:
	rm -rf $(BUILD) out
