enum Either<A, B> {
    case left(A), right(B)
    case both(A, Either<A, B>)
}
