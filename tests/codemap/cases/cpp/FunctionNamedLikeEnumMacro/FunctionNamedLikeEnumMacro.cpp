void LogicalType::__set_ENUM(const EnumType &value) {
    this->ENUM = value;
}

void set_OPTIONS(int value) {
    options = value;
}
