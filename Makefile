# Words for the everyday work; each is a script under scripts/, and CMake with its presets does the rest.
.PHONY: help demo check bench docs fuzz format setup clean package check-packages check-abi renew-abi check-windows

help:
	@echo "make demo     build the library and the vel tool, run the example modules on real data"
	@echo "make check    format, layers, headers, and every test, plain and under the sanitizers"
	@echo "make bench    the benchmarks, as one table of ratios to the practical limit"
	@echo "make docs     the reference of the public headers, as pages"
	@echo "make fuzz     each fuzz target for FUZZ_SECONDS seconds (60)"
	@echo "make format   lay the sources out as .clang-format says"
	@echo "make package  Debian packages in build/package/packages"
	@echo "make check-packages   the packages under lintian, unpacked, and used by a project from outside"
	@echo "make check-abi        the binary interface against the recorded one; renew-abi records it anew"
	@echo "make check-windows    the libraries cross-built for Windows, their tests run under Wine"
	@echo "make setup    install the Debian packages that are missing (the words above do it themselves)"
	@echo "make clean    remove what was built"

demo check bench docs fuzz format package check-packages check-abi check-windows:
	@scripts/$@.sh

renew-abi:
	@scripts/check-abi.sh renew

setup:
	@scripts/setup.sh build test bench tool

clean:
	rm -rf build
