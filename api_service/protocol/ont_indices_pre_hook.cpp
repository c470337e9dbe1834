#include "api_service/protocol/ont_indices_pre_hook.hpp"

#include "api_service/protocol/index_range.hpp"
#include "xpon/core/guard.hpp"

#include <set>
#include <span>
#include <string_view>
#include <utility>

namespace xpon::api_service {
namespace {

constexpr std::uint8_t usual_pon_port_count = 16;
constexpr std::size_t onts_per_pon_port = 256;

Result<void> add_flat_positions(IndexSet& flat, const IndexSet& ports, const IndexSet& onts, std::size_t pon_ports) {
    const auto first_ont = onts._Find_first();
    for (auto port = ports._Find_first(); port < ports.size(); port = ports._Find_next(port)) {
        if (port >= pon_ports) {
            return ErrorPayload(Error::OutOfRange, "Pon-port index is out of range");
        }
        if (first_ont < onts_per_pon_port) {
            flat.set(port * onts_per_pon_port + first_ont); // throws beyond the last position
        }
        if (onts._Find_next(onts_per_pon_port - 1) < onts.size()) {
            return ErrorPayload(Error::OutOfRange, "ONT index is out of range");
        }
        flat |= onts << (port * onts_per_pon_port);
    }
    return core::success();
}

} // namespace

OntIndicesPreHook::OntIndicesPreHook(const std::shared_ptr<ILogger>& logger,
                                     std::function<std::uint8_t()> pon_port_count)
    : logger_(logger), pon_port_count_(std::move(pon_port_count)) {}

Result<void> OntIndicesPreHook::operator()(const std::shared_ptr<Session>&, Request& request) const {
    auto flat = core::guarded(*logger_, [&] { return flat_indices(request.indices); }, core::exception_text_unpadded);
    if (!flat) {
        log_error(*logger_, "{}", flat.error().to_string());
        return flat.error();
    }
    request.indices = std::move(flat).value();
    return core::success();
}

Result<std::vector<std::string>> OntIndicesPreHook::flat_indices(const std::vector<std::string>& indices) const {
    const bool with_service = indices.size() == 3;
    if (indices.empty() || (indices.size() % 2 != 0 && !with_service)) {
        return ErrorPayload(Error::InvalidInputArg, "Invalid number of indices for request");
    }
    const auto board_count = pon_port_count_();
    const std::size_t pon_ports = board_count == 0 ? usual_pon_port_count : board_count;

    std::span<const std::string> pairs(indices);
    IndexSet flat;
    std::set<std::pair<std::string_view, std::string_view>> added;
    for (; pairs.size() >= 2; pairs = pairs.subspan(2)) {
        if (added.emplace(pairs[0], pairs[1]).second) {
            BOOST_OUTCOME_TRY(const auto pair, IndexRange<2>::from_strings(pairs.first(2)));
            BOOST_OUTCOME_TRY(add_flat_positions(flat, pair.level(0), pair.level(1), pon_ports));
        }
    }
    std::vector<std::string> result{get_string_range_from_bitset(flat)};
    result.insert(result.end(), pairs.begin(), pairs.end());
    return result;
}

} // namespace xpon::api_service
