from driver_sources import scan, scan_driver


def test_what_sources_say_is_read_from_their_text():
    facts = scan(r'''f(ReadInt32Setting("b")); x = ReadBoolSetting("a", true); kSection = "driver";
        {kGrip, "/input/grip/click"}, "/output/haptic", "/proximity", "/input", "{ombrel}/icons/a.png",
        {vr::Prop_InputProfilePath_String,
         "{ombrel}/input/p.json"}, Log("one %d \n", 1); Log(
         "two\n"); SetLogSink("no"); Blog("no\n");''')
    assert facts.settings == {"a": "Bool", "b": "Int32"}
    assert facts.settings_section == "driver"
    assert facts.components == {"/input/grip/click", "/output/haptic"}
    assert facts.references == {"{ombrel}/icons/a.png", "{ombrel}/input/p.json"}
    assert facts.input_profile == "{ombrel}/input/p.json"
    assert facts.log_formats == ["one %d", "two"]


def test_the_driver_says_all_of_it():
    """If it comes to do so in another way, nothing must pass for want of anything to check."""
    facts = scan_driver()
    assert (len(facts.settings), len(facts.components)) == (8, 10)
    assert facts.settings_section == "driver_ombrel"
    assert facts.input_profile == "{ombrel}/input/controller_profile.json"
    assert len(facts.log_formats) > 20
