enum Direction {
    case north
    case south, east
    case west
}
