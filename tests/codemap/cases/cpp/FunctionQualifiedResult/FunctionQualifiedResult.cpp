std::string sea::Tide::name() { return ""; }
::sea::Tide make() { return {}; }
