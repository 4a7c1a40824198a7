const std::string &A::name() const & { return name_; }
std::string &&A::take() && { return std::move(name_); }
