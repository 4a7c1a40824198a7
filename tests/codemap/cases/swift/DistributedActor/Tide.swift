distributed actor Player {
    distributed func move(to place: Place) async throws {}
}
