#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace navrel {

/// A std::function and a counted reference, with room for a few values.
inline constexpr size_t kUsualInlineSize = 64;

template <typename Signature, size_t InlineSize = kUsualInlineSize>
class MoveOnlyFunction;

/// What a wrapper can take over and call later: anything that is called so, but no other wrapper of
/// its kind, which it moves instead.
template <typename Callable, typename Wrapper, typename Result, typename... Arguments>
concept CallableFor = !std::is_same_v<std::remove_cvref_t<Callable>, Wrapper> &&
                      std::is_invocable_r_v<Result, std::remove_cvref_t<Callable>&, Arguments...>;

/// Something to call, with one owner at a time. Unlike a std::function it may hold what cannot be
/// copied, such as another function of this kind, and it allocates nothing for what fits into
/// `kInlineSize` bytes, counted references included: what happens with every frame of a connection
/// is handed on in these.
template <typename Result, typename... Arguments, size_t InlineSize>
class MoveOnlyFunction<Result(Arguments...), InlineSize> {
public:
    static constexpr size_t kInlineSize = InlineSize;

    /// Nothing to call.
    MoveOnlyFunction() = default;
    MoveOnlyFunction(std::nullptr_t) {}

    /// Takes over whatever can be called so. A std::function with nothing in it is nothing to call.
    template <CallableFor<MoveOnlyFunction, Result, Arguments...> Callable>
    MoveOnlyFunction(Callable&& callable) {
        if constexpr (std::is_constructible_v<bool, const Callable&> &&
                      requires { callable == nullptr; }) {
            if (callable == nullptr) {
                return;
            }
        }
        hold<std::remove_cvref_t<Callable>>(std::forward<Callable>(callable));
    }

    MoveOnlyFunction(MoveOnlyFunction&& other) noexcept { take(other); }
    MoveOnlyFunction& operator=(MoveOnlyFunction&& other) noexcept {
        if (this != &other) {
            reset();
            take(other);
        }
        return *this;
    }
    MoveOnlyFunction(const MoveOnlyFunction&) = delete;
    MoveOnlyFunction& operator=(const MoveOnlyFunction&) = delete;
    ~MoveOnlyFunction() { reset(); }

    explicit operator bool() const { return operations_ != nullptr; }

    /// Calls what is held, which there must be.
    Result operator()(Arguments... arguments) {
        return operations_->call(storage_, std::forward<Arguments>(arguments)...);
    }

private:
    /// What to do with the held object, whose type only these functions know.
    struct Operations {
        Result (*call)(void* storage, Arguments&&... arguments);
        void (*move)(void* from, void* to); ///< leaves nothing behind
        void (*destroy)(void* storage);
    };

    template <typename Held>
    static constexpr Operations kOperations = {
        [](void* storage, Arguments&&... arguments) -> Result {
            return (*static_cast<Held*>(storage))(std::forward<Arguments>(arguments)...);
        },
        [](void* from, void* to) {
            auto* held = static_cast<Held*>(from);
            ::new (to) Held(std::move(*held));
            held->~Held();
        },
        [](void* storage) { static_cast<Held*>(storage)->~Held(); },
    };

    /// What is too large to be held in place.
    template <typename Callable>
    struct Allocated {
        std::unique_ptr<Callable> callable;
        Result operator()(Arguments... arguments) {
            return (*callable)(std::forward<Arguments>(arguments)...);
        }
    };

    template <typename Callable>
    static constexpr bool kFitsInline =
        sizeof(Callable) <= kInlineSize
            ? alignof(Callable) <= alignof(void*) && std::is_nothrow_move_constructible_v<Callable>
            : false;

    template <typename Callable, typename Given>
    void hold(Given&& given) {
        if constexpr (kFitsInline<Callable>) {
            ::new (storage_) Callable(std::forward<Given>(given));
            operations_ = &kOperations<Callable>;
        } else {
            using Held = Allocated<Callable>;
            ::new (storage_) Held{std::make_unique<Callable>(std::forward<Given>(given))};
            operations_ = &kOperations<Held>;
        }
    }

    void take(MoveOnlyFunction& other) noexcept {
        operations_ = std::exchange(other.operations_, nullptr);
        if (operations_ != nullptr) {
            operations_->move(other.storage_, storage_);
        }
    }

    void reset() {
        if (const auto* operations = std::exchange(operations_, nullptr)) {
            operations->destroy(storage_);
        }
    }

    const Operations* operations_ = nullptr;
    alignas(void*) std::byte storage_[kInlineSize];
};

} // namespace navrel
