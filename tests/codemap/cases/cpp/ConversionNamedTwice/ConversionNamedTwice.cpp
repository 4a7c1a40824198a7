template <typename Target>
inline Proxy<Target>::Proxy::operator const local_ref<T>() const {
    return target_;
}
