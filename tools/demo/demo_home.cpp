#include "demo/demo_home.h"

#include <fmt/format.h>

#include <unistd.h>

#include <filesystem>
#include <utility>

namespace fleetwise::demo {

namespace {

generator::Plan planFor(const DemoHome::Wish& wish) {
    generator::Plan plan;
    plan.sessions = 50;
    plan.live = 10;
    plan.megabytes = 6;
    plan.desktop = 5;  // one of them is running
    plan.rollouts = 4;
    plan.subagentRollouts = 2;
    plan.forkedRollouts = 1;
    plan.compressedRollouts = 2;
    plan.projects = 8;
    plan.usageDays = 12;
    plan.seed = wish.seed;
    plan.pid = wish.pid;
    return plan;
}

}  // namespace

tl::expected<DemoHome, std::string> DemoHome::make(const Wish& wish) {
    DemoHome home;
    home.root = wish.folder;
    if (home.root.empty()) {
        home.root = (std::filesystem::temp_directory_path() / "fleetwise-demo-XXXXXX").string();
        if (::mkdtemp(home.root.data()) == nullptr)
            return tl::unexpected(fmt::format("cannot make {}", home.root));
        home.isRemoved = !wish.isKept;
    }
    home.root = std::filesystem::absolute(home.root).lexically_normal().string();
    auto books = generator::generate(planFor(wish), home.root);
    if (!books)
        return tl::unexpected(
            fmt::format("cannot write {}; the demo wants an empty folder", books.error().path));
    home.written = *std::move(books);
    return home;
}

DemoHome::DemoHome(DemoHome&& other) noexcept
    : root(std::move(other.root)),
      isRemoved(std::exchange(other.isRemoved, false)),
      written(std::move(other.written)) {}

DemoHome::~DemoHome() {
    std::error_code ignored;
    if (isRemoved) std::filesystem::remove_all(root, ignored);
}

}  // namespace fleetwise::demo
