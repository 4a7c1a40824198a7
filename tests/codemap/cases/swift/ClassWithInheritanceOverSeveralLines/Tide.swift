open class Harbour
    : Place
    , Naming,
    Locating
{
    var name: String { "" }
}
