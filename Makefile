# The two commands: `make run` and `make test`. Both install what is missing from Debian's
# packages first (as root; otherwise they print the apt-get line to run).

BUILD_RUN  := build/release
BUILD_TEST := build/test
JOBS       ?= $(shell nproc 2>/dev/null || echo 2)
APP        := $(BUILD_RUN)/trendax2

DEBIAN_PACKAGES := cmake make g++ pkg-config qt6-base-dev qt6-base-dev-tools qt6-qpa-plugins qt6-svg-dev \
	libgl-dev libgtest-dev libgmock-dev libbenchmark-dev fonts-dejavu-core fontconfig \
	xdg-utils poppler-utils desktop-file-utils appstream
# libFuzzer comes with clang's runtime; only `make fuzz` needs it.
FUZZ_PACKAGES := clang libclang-rt-14-dev
# dpkg-shlibdeps finds the package's library dependencies; only `make package` needs it.
PACKAGE_PACKAGES := dpkg-dev

.PHONY: run test deps install-packages build-release build-test screenshot fuzz bench package clean

deps:
	@$(MAKE) --no-print-directory install-packages PACKAGES="$(DEBIAN_PACKAGES)"

install-packages:
	@missing=""; \
	for p in $(PACKAGES); do \
		dpkg-query -W -f='$${Status}\n' $$p 2>/dev/null | grep -q '^install ok installed' || missing="$$missing $$p"; \
	done; \
	if [ -n "$$missing" ]; then \
		if [ "$$(id -u)" = 0 ]; then \
			echo "Installing:$$missing"; \
			apt-get update -qq && DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $$missing; \
		else \
			echo "Missing packages. Run: sudo apt-get install$$missing"; exit 1; \
		fi; \
	fi

build-release: deps
	cmake -S . -B $(BUILD_RUN) -DCMAKE_BUILD_TYPE=Release -DTRENDAX_TESTS=OFF
	cmake --build $(BUILD_RUN) -j$(JOBS)

build-test: deps
	cmake -S . -B $(BUILD_TEST) -DCMAKE_BUILD_TYPE=Debug -DTRENDAX_SANITIZE=ON
	cmake --build $(BUILD_TEST) -j$(JOBS)

# Imports the sample field media into an empty home folder through the program's own import,
# then starts the viewer. A home folder that holds data is never touched.
run: build-release
	$(BUILD_RUN)/trendax-import examples/field-media $(BUILD_RUN)
	$(APP)

test: build-test
	ctest --test-dir $(BUILD_TEST) --output-on-failure -j$(JOBS)

# A picture of the main window with sample data, rendered offscreen, for the README.
screenshot: build-release
	$(BUILD_RUN)/trendax-screenshot examples/field-media docs/screenshot.png WL13 docs/open-dialog.png

bench: deps
	cmake -S . -B build/bench -DCMAKE_BUILD_TYPE=Release -DTRENDAX_TESTS=OFF
	cmake --build build/bench -j$(JOBS)
	@echo "Benchmarks are in build/bench/bench/."

# make fuzz SECONDS=N runs every fuzz target for N seconds (default 60) and prints a summary.
SECONDS ?= 60
fuzz: deps
	@$(MAKE) --no-print-directory install-packages PACKAGES="$(FUZZ_PACKAGES)"
	./fuzz/run.sh $(SECONDS)

# A Debian package of the Release build in build/package/: the program, its desktop entry,
# icons, metadata and manual page. Install it with `apt-get install ./build/package/FILE.deb`.
package: build-release
	@$(MAKE) --no-print-directory install-packages PACKAGES="$(PACKAGE_PACKAGES)"
	cpack --config $(BUILD_RUN)/CPackConfig.cmake -B build/package
	@ls build/package/*.deb

clean:
	rm -rf build
