struct A {
    using Base = int;
    using Other::Other;
    typedef std::map<int, char> Table;
    Table table;
};
