int between()
{
    return 42;
}
