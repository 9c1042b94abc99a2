#pragma once

#include "sharing/choice.h"

#include <map>
#include <optional>
#include <string>

#include <CLI/CLI.hpp>

namespace bench {

// --sharing own|stand-in, alike in all programs that share textures.
inline void AddSharingOption(CLI::App& app, std::optional<Sharing>& wish) {
  static const std::map<std::string, Sharing> kNames = {{NameOf(Sharing::kOwn), Sharing::kOwn},
                                                        {NameOf(Sharing::kStandIn), Sharing::kStandIn}};
  app.add_option("--sharing", wish,
                 "Shared textures of Direct3D itself (own) or stand-ins; without it the machine is asked")
      ->transform(CLI::CheckedTransformer(kNames));
}

}  // namespace bench
