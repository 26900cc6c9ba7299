// Empty: for targets that consist of what they link or precompile.
