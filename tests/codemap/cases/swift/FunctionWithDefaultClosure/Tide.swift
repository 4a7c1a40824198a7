func run(job: () -> Int = { let a = 1; return a }, name: String = "}") {
}
