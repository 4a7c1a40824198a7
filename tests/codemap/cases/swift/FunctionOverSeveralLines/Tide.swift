func connect(
    to host: String, // the host
    port: Int = 80,  /* its port */
    _ options: Options...
)
async throws -> Connection
where Host: P
{
    let local = 1
}
