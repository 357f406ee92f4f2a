import QtTest
import Tevrin
import TevrinTest

TestCase {
    name: "Status"

    function test_theStatusShowsTheMostSevereProblem_data() {
        return [
            {tag: "fine", arrange: () => {}, tone: Status.Good, says: "可以接收"},
            {tag: "no network", arrange: () => Stage.setAddresses([]), tone: Status.Warning, says: "没有连接到局域网"},
            {tag: "check failed", arrange: () => Stage.failCheck("连接超时"), tone: Status.Warning, says: "连接超时"},
            {tag: "firewall", arrange: () => Stage.blockByFirewall(), tone: Status.Warning, says: "防火墙"},
            {tag: "starting", arrange: () => Stage.setPort(0), tone: Status.Pending, says: "正在启动"},
            {tag: "failed", arrange: () => {
                    Stage.setPort(0);
                    Stage.setError("无法启动服务：端口都被占用");
                }, tone: Status.Bad, says: "照片暂时传不进来"}
        ];
    }
    function test_animationsStopWithReducedMotion() {
        const gnome = "org.gnome.desktop.interface";
        const kde = "org.kde.kdeglobals.KDE";
        verify(Stage.isStillAfter(gnome, "enable-animations", false));
        verify(!Stage.isStillAfter(gnome, "enable-animations", true));
        verify(Stage.isStillAfter(kde, "AnimationDurationFactor", "0"));
        verify(!Stage.isStillAfter(kde, "AnimationDurationFactor", "0.5"));
        verify(!Stage.isStillAfter(gnome, "clock-show-date", false));
    }

    function test_theStatusShowsTheMostSevereProblem(data) {
        Stage.reset();
        data.arrange();
        compare(Status.tone, data.tone);
        verify(Status.sentence.includes(data.says), Status.sentence);
    }
}
