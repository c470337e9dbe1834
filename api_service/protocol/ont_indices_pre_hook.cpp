#include "api_service/protocol/ont_indices_pre_hook.hpp"

#include "api_service/protocol/index_range.hpp"
#include "xpon/core/guard.hpp"

#include <span>
#include <utility>

namespace xpon::api_service {
namespace {

constexpr std::uint8_t usual_pon_port_count = 16;
constexpr std::size_t onts_per_pon_port = 256;

Result<void> add_flat_positions(IndexSet& flat, const IndexRange<2>& pair, std::size_t pon_ports) {
    return pair.for_each([&](const IndexRange<2>::Element& element) -> Result<void> {
        const auto [port, ont] = element;
        if (port >= pon_ports) {
            return ErrorPayload(Error::OutOfRange, "Pon-port index is out of range");
        }
        if (ont >= onts_per_pon_port) {
            return ErrorPayload(Error::OutOfRange, "ONT index is out of range");
        }
        flat.set(port * onts_per_pon_port + ont); // throws beyond the last position
        return core::success();
    });
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
    for (; pairs.size() >= 2; pairs = pairs.subspan(2)) {
        BOOST_OUTCOME_TRY(const auto pair, IndexRange<2>::from_strings(pairs.first(2)));
        BOOST_OUTCOME_TRY(add_flat_positions(flat, pair, pon_ports));
    }
    std::vector<std::string> result{get_string_range_from_bitset(flat)};
    result.insert(result.end(), pairs.begin(), pairs.end());
    return result;
}

} // namespace xpon::api_service
