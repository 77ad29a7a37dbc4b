# The short way to each task; the work is done by the CMake presets and the scripts.

PREFIX ?= /usr/local
presets := dev release asan tsan fuzz bench
configured := $(presets:%=configure-%)
built := $(presets:%=build-%)

.PHONY: run demo screenshots test install package bench asan tsan fuzz format format-check tidy clean
.PHONY: packages test-packages check-packages package-packages $(configured) $(built)
.NOTPARALLEL:

# Without a display the program prints its report.
run: configure-release
	cmake --build --preset release --target fleetwise fleetwise-hook
	build/release/bin/fleetwise $(if $(DISPLAY)$(WAYLAND_DISPLAY),,--dump)

# The application on a fleet of its own making, in a home folder of its own.
demo: build-release
	build/release/bin/fleetwise-demo

# Pictures of every window in several languages and looks, and which of its texts are cut.
screenshots: configure-dev
	cmake --build --preset dev --target fleetwise-screenshots
	build/dev/bin/fleetwise-screenshots build/screenshots

test: test-packages build-dev
	ctest --preset dev

install: build-release
	cmake --install build/release --prefix "$(PREFIX)"

# For Debian and Ubuntu: build/release/fleetwise_VERSION_ARCHITECTURE.deb.
package: package-packages build-release
	cmake --build --preset release --target package
	lintian --fail-on error,warning build/release/fleetwise_*.deb

bench: build-bench
	build/bench/bin/fleetwise-benchmarks

asan tsan: %: test-packages build-%
	ctest --preset $@

fuzz: check-packages build-fuzz
	scripts/fuzz

format: check-packages
	scripts/format

format-check: check-packages
	scripts/format --check

tidy: check-packages configure-dev
	scripts/tidy

clean:
	rm -rf build

packages:
	scripts/install-packages

test-packages:
	scripts/install-packages --tests

check-packages:
	scripts/install-packages --checks

package-packages:
	scripts/install-packages --package

$(configured): configure-%: packages
	cmake --preset $*

$(built): build-%: configure-%
	cmake --build --preset $*
