#include "board/reset.h"

namespace varn {

ResetHooks reset_hooks = {[] {}, [] {}, [](KeepTables) {}};

}  // namespace varn
