extern template class std::vector<int>;
int after;
