#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace navrel {

/// In bytes: room for a std::function, a shared pointer and a few values.
inline constexpr size_t kUsualInlineSize = 64;

template <typename Signature, size_t InlineSize = kUsualInlineSize>
class MoveOnlyFunction;

/// What a wrapper can hold: anything that can be called with these arguments, except another
/// wrapper of its own type, which is moved instead.
template <typename Callable, typename Wrapper, typename Result, typename... Arguments>
concept CallableFor = !std::is_same_v<std::remove_cvref_t<Callable>, Wrapper> &&
                      std::is_invocable_r_v<Result, std::remove_cvref_t<Callable>&, Arguments...>;

/// A callable that can be moved and not copied. Unlike a std::function it may hold what cannot be
/// copied, such as another function of this kind. It allocates nothing for a callable of at most
/// `kInlineSize` bytes: every frame of a connection passes through several of these.
template <typename Result, typename... Arguments, size_t InlineSize>
class MoveOnlyFunction<Result(Arguments...), InlineSize> {
public:
    static constexpr size_t kInlineSize = InlineSize;

    /// Holds nothing: converts to false.
    MoveOnlyFunction() = default;
    MoveOnlyFunction(std::nullptr_t) {}

    /// Holds a callable; nothing if that is an empty std::function or a null pointer.
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

    /// Calls what it holds. Must not be called while it holds nothing.
    Result operator()(Arguments... arguments) {
        return operations_->call(storage_, std::forward<Arguments>(arguments)...);
    }

private:
    /// The operations on the held object, whose type only they know.
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

    /// Holds a callable that is too large to be stored inline.
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
