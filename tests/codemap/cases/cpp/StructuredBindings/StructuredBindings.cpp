static const auto& [tide, ebb] = pair();
[[maybe_unused]] auto&& [flow](single());
namespace Sea {
auto [deep, shallow] = depths();
}
auto [[maybe_unused]] after = 1;
