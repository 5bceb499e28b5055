# Builds the UCI program in one step, as engine test frameworks expect:
#
#     make EXE=varn-uci CXX=clang++
#
# For everything else use CMake: see README.md.
EXE ?= varn-uci
CXX ?= g++
VERSION := $(shell sed -n 's/.*Varn VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
SOURCES := $(filter-out src/console/main.cpp, $(wildcard src/*/*.cpp))
HEADERS := $(wildcard src/*/*.h)

# Link-time optimisation, and higher limits for the constexpr tables.
BY_COMPILER := $(if $(findstring clang,$(shell $(CXX) --version)),-flto -fconstexpr-steps=100000000,-flto=auto -fconstexpr-ops-limit=1000000000)

$(EXE): $(SOURCES) $(HEADERS)
	$(CXX) -std=c++20 -O3 -DNDEBUG -march=native $(BY_COMPILER) -DVARN_VERSION='"$(VERSION)"' -Isrc $(SOURCES) -o $@ -pthread

.PHONY: clean
clean:
	$(RM) $(EXE)
