template <
    typename Key,
    typename Value = std::vector<Key>
>
class Table
{
    Key key;
};
