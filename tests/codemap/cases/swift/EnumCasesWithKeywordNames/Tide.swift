enum Step {
    case open, close, final
    case lazy
    case some(Int), none
    case get, set
}
