enum Wind {
    case calm,
         breeze(speed: Int),
         storm
    case hurricane(
        speed: Int,
        name: String
    )
}
