// Lists the members of a club through the registered server. The few members that it needs are declared here, by their
// numbers in the type library; for all of them, let tlbimp TaviMembership.tlb write the declarations.
//   csc /platform:x64 Members.cs
using System;
using System.Runtime.InteropServices;

[ComImport, Guid("CD603914-4761-472B-BDA3-F543D0ABC6C1"), InterfaceType(ComInterfaceType.InterfaceIsIDispatch)]
interface IMembershipDatabase
{
    [DispId(2)]
    bool DatabaseExists { get; }

    [DispId(3)]
    string DatabaseFolder { get; set; }

    [DispId(4)]
    string DatabaseFileName { get; }

    [DispId(23)]
    bool GetFirstMember(ref int number, ref string name, ref double handicap, short nameFormat);

    [DispId(24)]
    bool GetNextMember(ref int number, ref string name, ref double handicap, short nameFormat);

    [DispId(30)]
    void EndGet();
}

[ComImport, Guid("88FA9BA1-A3F3-47AE-A57D-5FA91276F083")]
class MembershipDatabase
{
}

static class Members
{
    static void List(IMembershipDatabase database)
    {
        if (!database.DatabaseExists)
            throw new ApplicationException("There is no " + database.DatabaseFileName);
        int number = 0;
        string name = "";
        double handicap = 0;
        for (bool found = database.GetFirstMember(ref number, ref name, ref handicap, 0); found;
             found = database.GetNextMember(ref number, ref name, ref handicap, 0))
            Console.WriteLine("{0}\t{1}\t{2:F2}", number, name, handicap);
        database.EndGet();
    }

    [STAThread]
    static int Main(string[] given)
    {
        try
        {
            var database = (IMembershipDatabase)new MembershipDatabase();
            if (given.Length > 0)
                database.DatabaseFolder = given[0];
            List(database);
            Marshal.ReleaseComObject(database);
            return 0;
        }
        catch (Exception error)  // A COMException has the error's number as its ErrorCode.
        {
            Console.Error.WriteLine(error.Message);
            return 1;
        }
    }
}
