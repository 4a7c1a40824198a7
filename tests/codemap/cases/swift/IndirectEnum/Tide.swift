indirect enum Tree<T> {
    case leaf
    case node(Tree, T, Tree)
}
enum List {
    case end
    indirect case next(List)
}
