// The one table of all page components: ProgID ("Ostrakan.ClassN", case-insensitive) to the
// component's constructor.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include "frame/component.h"

namespace ostrakan {

// A new component, constructed (and so attached to the thread's request context), or nullptr
// for an unknown ProgID.
std::shared_ptr<Component> CreateComponent(std::u16string_view progId);
std::vector<std::u16string> RegisteredProgIds();

}  // namespace ostrakan
