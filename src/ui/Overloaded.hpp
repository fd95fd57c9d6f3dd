#pragma once

namespace scrimlet {

/// One visitor made of several lambdas, one per alternative of a variant.
template <class... Cases>
struct Overloaded : Cases... {
    using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

} // namespace scrimlet
