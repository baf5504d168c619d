#include "vex2/manager/RegistryFlag.h"

#include <string>
#include <variant>

#include "vex2/framework/Host.h"
#include "vex2/manager/OrNothing.h"

bool ReadRegistryFlag(bool localMachine, const char* name, std::uint32_t defaultValue,
                      const char* subKey) {
  return vex2::OrNothing([&] {
    std::string key = "Software\\Orbanet Scientific\\Vex2";
    if (subKey != nullptr) key.append("\\").append(subKey);
    const auto setting =
        vex2::GetHost()->QuerySetting(localMachine, key, name != nullptr ? name : "");
    if (std::holds_alternative<std::monostate>(setting)) return false;
    const auto* number = std::get_if<std::uint32_t>(&setting);
    return (number != nullptr ? *number : defaultValue) != 0;
  });
}
