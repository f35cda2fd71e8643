// What building and changing a large tree costs, counted in the nodes the tree steps through:
// loading and re-expanding must stay in proportion to what they touch, whatever the tree holds.
#include "explorer/explorer_fixture.h"

namespace arbolet::explorer::testing {
namespace {

class Scaling : public ExplorerTest {
  protected:
    std::size_t Work() const { return view.NodesInMemory().Work(); }

    // `count` modules in one fixed group, listed in the order their names sort in, which is
    // how most project files list them.
    void AddModules(int count) {
        auto project = vbe->AddProject("Big");
        for (int i = 0; i < count; ++i) {
            char name[16];
            std::snprintf(name, sizeof(name), "mod%05d", i);
            project->AddComponent(name, env::ComponentType::StdModule);
        }
    }

    static std::string CodeOfLines(int lines) {
        std::string code = "Attribute VB_Name = \"modBig\"\r\nSub Main()\r\n";
        for (int i = 0; i < lines; ++i)
            code += "    x = " + std::to_string(i) + "\r\n";
        return code + "End Sub\r\n";
    }
};

TEST_F(Scaling, LoadingComponentsCostsInProportionToTheirNumber) {
    constexpr int kModules = 4000;
    AddModules(kModules);
    explorer.RefreshProjects();
    ASSERT_EQ(nodes().Count(), 2 + 2 * kModules);  // project, group, modules, placeholders
    // In order, the first module and the last of the group are its first and last children.
    const tree::NodeRef group = nodes().Item(1)->Child();
    EXPECT_EQ(group->Child()->Text(), "mod00000");
    tree::NodeRef last = group->Child();
    while (last->Next())
        last = last->Next();
    EXPECT_EQ(last->Text(), "mod03999");
    // Walking a folder for each module would step through about 8,000,000 nodes.
    EXPECT_LT(Work(), 40u * kModules);
}

TEST_F(Scaling, RemovingAndReExpandingCostWhatTheyTouch) {
    auto project = vbe->AddProject("Shop");
    auto big = project->AddComponent("modBig", env::ComponentType::StdModule);
    big->SetCode(CodeOfLines(5000));
    for (const char* name : {"modA", "modB", "modC"})
        project->AddComponent(name, env::ComponentType::StdModule);
    explorer.RefreshProjects();
    const std::string bigKey = ComponentKey("modBig", "Shop");
    ASSERT_TRUE(explorer.ExpandNode(*nodes().Item(bigKey)).done());
    const std::int32_t total = nodes().Count();
    ASSERT_GT(total, 5000);

    // One small component leaves without the tree renumbering its 5,000 code nodes.
    std::size_t before = Work();
    nodes().Remove(ComponentKey("modA", "Shop"));
    EXPECT_LT(Work() - before, 10u);
    EXPECT_EQ(nodes().Count(), total - 2);
    EXPECT_FALSE(nodes().Exists(ComponentKey("modA", "Shop")));
    // Indexes still count only the nodes that are left, in their order of addition.
    for (std::int32_t i = 1; i <= nodes().Count(); i += 997)
        EXPECT_EQ(nodes().Item(i)->Index(), i);

    // The group closes over the open component, which keeps its code nodes; opening the
    // component again rebuilds them at a cost in proportion to its lines, not to the tree.
    const tree::NodeRef group = nodes().Item(bigKey)->Parent();
    ASSERT_TRUE(explorer.CollapseNode(*group).done());
    before = Work();
    ASSERT_TRUE(explorer.ExpandNode(*nodes().Item(bigKey)).done());
    EXPECT_LT(Work() - before, 4u * 5000);
    EXPECT_EQ(nodes().Count(), total - 2);
}

}  // namespace
}  // namespace arbolet::explorer::testing
