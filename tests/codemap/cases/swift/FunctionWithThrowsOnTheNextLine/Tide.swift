func a(b: Int)
    async
    throws
{
}
