// The UCI engine; with `bench` on the command line, the signature of the search.
#include <cstdio>
#include <string_view>

#include "base/number.h"
#include "base/output.h"
#include "frontend/bench.h"
#include "frontend/startup.h"
#include "frontend/version.h"
#include "uci/uci.h"

namespace {

constexpr const char* help_text =
    "usage: varn-uci                 speaks UCI on standard input and output\n"
    "       varn-uci bench [DEPTH]   searches a dozen positions to the depth, 1 to 50, and prints nodes and speed\n"
    "       varn-uci --help | --version\n";

int refuse(const char* what) {
    static_cast<void>(std::fprintf(stderr, "varn-uci: expects %s; see --help\n", what));
    return 2;
}

int bench(int depth) {
    const varn::BenchTotal total = varn::run_bench(depth, [](const char* position, std::uint64_t nodes) {
        varn::say("%12llu  %s\n", static_cast<unsigned long long>(nodes), position);
    });
    varn::say("%llu nodes %.0f nps\n", static_cast<unsigned long long>(total.nodes),
              static_cast<double>(total.nodes) / total.seconds);
    return total.nodes > 0 ? 0 : 1;
}

int bench(std::string_view depth_text) {
    const auto depth = varn::read_number(depth_text, 1, varn::deepest_iteration);
    return depth ? bench(*depth) : refuse("a depth from 1 to 50");
}

int speak_uci() {
    varn::Uci uci;
    if (!varn::start_uci(uci)) {
        varn::say_text("info string not enough memory for the tables\n");
        return 1;
    }
    varn::uci_loop(uci);
    return 0;
}

}  // namespace

int main(int argument_count, char** arguments) {
    varn::set_up_process();
    const std::string_view task = argument_count > 1 ? arguments[1] : "";
    if (argument_count == 1) return speak_uci();
    if (task == "bench" && argument_count == 2) return bench(varn::bench_depth);
    if (task == "bench" && argument_count == 3) return bench(std::string_view(arguments[2]));
    if (argument_count > 2) return refuse("nothing, bench, --help or --version");
    if (task == "--version") {
        varn::say("%.*s\n", static_cast<int>(varn::program_name.size()), varn::program_name.data());
    } else if (task == "--help") {
        varn::say_text(help_text);
    } else {
        return refuse("nothing, bench, --help or --version");
    }
    return 0;
}
