# The UCI program in one step, as test farms for engines build it:
#
#     make EXE=varn-uci CXX=clang++
#
# Everything else is CMake's: see README.md.
EXE ?= varn-uci
CXX ?= g++
VERSION := $(shell sed -n 's/.*Varn VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
SOURCES := $(filter-out src/console/main.cpp, $(wildcard src/*/*.cpp))
HEADERS := $(wildcard src/*/*.h)

# A whole program to optimise, and tables to build that take more steps than the compilers allow by default.
BY_COMPILER := $(if $(findstring clang,$(shell $(CXX) --version)),-flto -fconstexpr-steps=100000000,-flto=auto -fconstexpr-ops-limit=1000000000)

$(EXE): $(SOURCES) $(HEADERS)
	$(CXX) -std=c++20 -O3 -DNDEBUG -march=native $(BY_COMPILER) -DVARN_VERSION='"$(VERSION)"' -Isrc $(SOURCES) -o $@ -pthread

.PHONY: clean
clean:
	$(RM) $(EXE)
