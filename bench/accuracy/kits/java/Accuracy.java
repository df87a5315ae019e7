// A window of Swing that says where its elements are and how they are styled.
//
//   java Accuracy.java PLAN

import java.awt.Color;
import java.awt.Component;
import java.awt.Container;
import java.awt.Dimension;
import java.awt.Font;
import java.awt.Graphics;
import java.awt.Point;
import java.awt.Rectangle;
import java.awt.image.BufferedImage;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.stream.Collectors;
import javax.swing.BorderFactory;
import javax.swing.DefaultListModel;
import javax.swing.ImageIcon;
import javax.swing.JButton;
import javax.swing.JCheckBox;
import javax.swing.JComboBox;
import javax.swing.JComponent;
import javax.swing.JFrame;
import javax.swing.JLabel;
import javax.swing.JList;
import javax.swing.JMenu;
import javax.swing.JMenuBar;
import javax.swing.JMenuItem;
import javax.swing.JPanel;
import javax.swing.JRadioButton;
import javax.swing.JSpinner;
import javax.swing.JTable;
import javax.swing.JTextArea;
import javax.swing.JTextField;
import javax.swing.SwingUtilities;
import javax.swing.Timer;

public final class Accuracy {
    private static final JFrame frame = new JFrame("Accuracy");
    private static final List<String> stated = new ArrayList<>();
    /** What is to be stated once everything has its place. */
    private static final List<Runnable> statements = new ArrayList<>();

    private static Map<String, String> readElement(String line) {
        Map<String, String> element = new LinkedHashMap<>();
        for (String property : line.split("\t")) {
            int equals = property.indexOf('=');
            element.put(property.substring(0, equals), property.substring(equals + 1));
        }
        return element;
    }

    private static int number(Map<String, String> element, String name) {
        return Integer.parseInt(element.get(name));
    }

    private static String listed(Rectangle place) {
        return "[" + place.x + "," + place.y + "," + place.width + "," + place.height + "]";
    }

    private static Rectangle placeIn(Component component, Rectangle place) {
        return SwingUtilities.convertRectangle(component, place, frame.getRootPane());
    }

    private static Rectangle placeOf(Component component) {
        return placeIn(component, new Rectangle(component.getSize()));
    }

    private static String listedPlaces(List<? extends Component> components) {
        return listed(components.stream().map(Accuracy::placeOf).collect(Collectors.toList()));
    }

    private static String listed(List<Rectangle> places) {
        return places.stream().map(Accuracy::listed).collect(Collectors.joining(",", "[", "]"));
    }

    /** @param more further properties, as written in JSON */
    private static void state(String id, Rectangle place, Map<String, String> element,
                              String more, String... kept) {
        StringBuilder text = new StringBuilder("{\"id\":\"" + id + "\",\"frame\":" + listed(place));
        for (String name : kept) {
            text.append(",\"" + name + "\":\"" + element.get(name) + "\"");
        }
        stated.add(text + more + "}");
    }

    /** There are but two weights. */
    private static boolean isBold(Map<String, String> element) {
        return number(element, "weight") >= 600;
    }

    private static void style(Component component, Map<String, String> element) {
        component.setFont(new Font(element.get("family"), isBold(element) ? Font.BOLD : Font.PLAIN,
                                   number(element, "size")));
        component.setForeground(Color.decode(element.get("color")));
        component.setBackground(Color.decode(element.get("fill")));
    }

    private static void statesStyle(Component component, Map<String, String> element) {
        statements.add(() -> state(element.get("id"), placeOf(component), element,
                                   ",\"weight\":" + (isBold(element) ? 700 : 400),
                                   "family", "size", "color", "fill"));
    }

    private static Component styled(JComponent component, Map<String, String> element) {
        style(component, element);
        if (element.containsKey("padding")) {
            int padding = number(element, "padding");
            component.setBorder(
                BorderFactory.createEmptyBorder(padding, padding, padding, padding));
        }
        statesStyle(component, element);
        return component;
    }

    private static Component area(Map<String, String> element) {
        JTextArea area = new JTextArea(element.get("text"));
        area.setLineWrap(true);
        area.setPreferredSize(new Dimension(number(element, "width"), number(element, "height")));
        return styled(area, element);
    }

    private static Component entry(Map<String, String> element) {
        JTextField field = new JTextField(element.get("text"));
        Component entry = styled(field, element);
        field.setPreferredSize(
            new Dimension(number(element, "width"), field.getPreferredSize().height));
        return entry;
    }

    private static Component button(Map<String, String> element) {
        JButton button = new JButton(element.get("text"));
        button.setContentAreaFilled(false);
        button.setOpaque(true);
        return styled(button, element);
    }

    private static Component plain(JComponent component, Map<String, String> element) {
        component.setBackground(Color.WHITE);
        statements.add(() -> state(element.get("id"), placeOf(component), element, ""));
        return component;
    }

    private static JComboBox<String> comboBox() {
        return new JComboBox<>(new String[] {"Monthly", "Yearly"});
    }

    /** Of what has a field in it, that is what is found. */
    private static Component withField(JComponent component, Component field,
                                       Map<String, String> element) {
        component.setPreferredSize(new Dimension(number(element, "width"), 30));
        statements.add(() -> state("entry-" + element.get("id"), placeOf(field), element, ""));
        return component;
    }

    private static Component combo(Map<String, String> element) {
        JComboBox<String> combo = comboBox();
        combo.setEditable(true);
        return withField(combo, combo.getEditor().getEditorComponent(), element);
    }

    private static Component spin(Map<String, String> element) {
        JSpinner spinner = new JSpinner();
        return withField(spinner, ((JSpinner.DefaultEditor) spinner.getEditor()).getTextField(),
                         element);
    }

    private static Component menubar(Map<String, String> element) {
        JMenuBar bar = new JMenuBar();
        JMenu menu = new JMenu(element.get("text"));
        menu.add(new JMenuItem("Entry"));
        bar.add(menu);
        statements.add(() -> state(element.get("id"), placeOf(menu), element, ""));
        return bar;
    }

    private static String point(Rectangle place) {
        int fromEnd = 8;
        return ",\"point\":[" + (place.x + place.width / 2) + ","
            + (place.y + place.height - fromEnd) + "]";
    }

    private static Component list(Map<String, String> element) {
        int itemHeight = 26;
        DefaultListModel<String> model = new DefaultListModel<>();
        for (int n = 0; n < number(element, "items"); ++n) {
            model.addElement("Item " + n);
        }
        JList<String> list = new JList<>(model);
        list.setFixedCellHeight(itemHeight);
        list.setPreferredSize(new Dimension(120, model.size() * itemHeight + 20));
        statements.add(() -> {
            List<Rectangle> items = new ArrayList<>();
            for (int n = 0; n < model.size(); ++n) {
                items.add(placeIn(list, list.getCellBounds(n, n)));
            }
            Rectangle place = placeOf(list);
            state(element.get("id"), place, element,
                  ",\"items\":" + listed(items) + point(place));
        });
        return list;
    }

    private static Component box(Map<String, String> element, boolean across) {
        int padding = number(element, "padding");
        int gap = number(element, "gap");
        Rectangle next = new Rectangle(padding, padding, 64, 20);
        Rectangle all = new Rectangle(next);
        JPanel panel = new JPanel(null);
        panel.setBackground(Color.decode(element.get("fill")));
        List<JLabel> shown = new ArrayList<>();
        for (int n = 0; n < number(element, "items"); ++n) {
            JLabel item = new JLabel("Item " + n);
            item.setForeground(Color.decode(element.get("color")));
            item.setBounds(next);
            panel.add(item);
            if (n == number(element, "hidden")) {
                item.setVisible(false);
                continue;
            }
            shown.add(item);
            all = all.union(next);
            next.translate(across ? next.width + gap : 0, across ? 0 : next.height + gap);
        }
        panel.setPreferredSize(new Dimension(all.width + 2 * padding, all.height + 2 * padding));
        statements.add(() -> state(
            element.get("id"), placeOf(panel), element, ",\"items\":" + listedPlaces(shown),
            "fill"));
        return panel;
    }

    private static Component table(Map<String, String> element) {
        int rows = number(element, "rows");
        int columns = number(element, "columns");
        JTable table = new JTable(rows, columns);
        for (int n = 0; n < rows * columns; ++n) {
            table.setValueAt("Cell text", n / columns, n % columns);
        }
        table.setRowHeight(25);
        table.setPreferredSize(new Dimension(240, rows * 25 + 20));
        statements.add(() -> {
            List<Rectangle> items = new ArrayList<>();
            for (int n = 0; n < rows; ++n) {
                items.add(placeIn(table, table.getCellRect(n, 0, false)
                                             .union(table.getCellRect(n, columns - 1, false))));
            }
            Rectangle place = placeOf(table);
            state(element.get("id"), place, element, ",\"items\":" + listed(items) + point(place));
        });
        return table;
    }

    private static Component image(Map<String, String> element) {
        BufferedImage picture = new BufferedImage(number(element, "width"),
                                                  number(element, "height"),
                                                  BufferedImage.TYPE_INT_RGB);
        Graphics graphics = picture.getGraphics();
        graphics.setColor(Color.decode(element.get("fill")));
        graphics.fillRect(0, 0, picture.getWidth(), picture.getHeight());
        JLabel label = new JLabel(new ImageIcon(picture));
        statements.add(
            () -> state(element.get("id"), placeOf(label), element, "", "fill"));
        return label;
    }

    private static Component make(Map<String, String> element) {
        String text = element.get("text");
        switch (element.get("what")) {
            case "label": return styled(new JLabel(text), element);
            case "button": return button(element);
            case "entry": return entry(element);
            case "area": return area(element);
            case "check": return plain(new JCheckBox(text), element);
            case "radio": return plain(new JRadioButton(text), element);
            case "spin": return spin(element);
            case "popup": return plain(comboBox(), element);
            case "combo": return combo(element);
            case "menubar": return menubar(element);
            case "list": return list(element);
            case "box": case "panel": return box(element, false);
            case "row": return box(element, true);
            case "table": return table(element);
            case "image": return image(element);
            default: return null;
        }
    }

    private static void show(List<Map<String, String>> plan) {
        Container place = frame.getContentPane();
        place.setLayout(null);
        place.setBackground(Color.WHITE);
        place.setPreferredSize(new Dimension(1260, 900));
        for (Map<String, String> element : plan) {
            Component component = make(element);
            if (component != null) {
                component.setFocusable(false);
                place.add(component);
                component.setBounds(new Rectangle(new Point(number(element, "x"), number(element, "y")),
                                                  component.getPreferredSize()));
            }
        }
        frame.setDefaultCloseOperation(JFrame.EXIT_ON_CLOSE);
        frame.pack();
        frame.setVisible(true);
    }

    private static void print() {
        statements.forEach(Runnable::run);
        double unit = frame.getGraphicsConfiguration().getDefaultTransform().getScaleX();
        System.out.println("{\"unit\":" + unit + ",\"elements\":["
                           + String.join(",", stated) + "]}");
    }

    public static void main(String[] arguments) throws IOException {
        List<Map<String, String>> plan = Files.readAllLines(Path.of(arguments[0])).stream()
            .map(Accuracy::readElement).collect(Collectors.toList());
        SwingUtilities.invokeLater(() -> {
            show(plan);
            int patienceMs = 1500; // for the window manager
            Timer timer = new Timer(patienceMs, event -> print());
            timer.setRepeats(false);
            timer.start();
        });
    }
}
